#include "filter/FilterHealth.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Health = FilterHealth;
using State = Health::ExtensionState;
using Status = FilterStatus;
using Records = std::vector<ExtensionRecord>;

constexpr double now = 1000;
const ExtensionRecord active { .isEnabled = true, .shortVersion = {}, .buildVersion = {} };
const ExtensionRecord awaiting { .isAwaitingUserApproval = true, .shortVersion = {}, .buildVersion = {} };

Health::PropertiesObservation records(double age, Records list = { active })
{
    return Health::Records { std::move(list), now - age };
}
Health::PropertiesObservation failed(double age) { return Health::PropertiesFailed { now - age }; }
Health::ConfigObservation enabled(double age) { return Health::Enabled { true, now - age }; }
Health::ConfigObservation disabled(double age) { return Health::Enabled { false, now - age }; }
Health::ConfigObservation unreadable(double age) { return Health::ConfigFailed { now - age }; }

}

TEST(FilterHealth, TheRecordsGiveTheExtensionsState)
{
    struct Case {
        bool isEnabled;
        bool isAwaiting;
        bool isUninstalling;
        State expected;
    };
    for (const auto& [isEnabled, isAwaiting, isUninstalling, expected] : {
             Case { true, false, false, State::active },
             Case { true, true, false, State::awaitingApproval },
             Case { false, true, false, State::awaitingApproval },
             Case { false, false, false, State::absent },
             Case { true, false, true, State::absent },
             Case { true, true, true, State::absent },
             Case { false, true, true, State::absent },
             Case { false, false, true, State::absent },
         }) {
        const ExtensionRecord record { isEnabled, isAwaiting, isUninstalling, {}, {} };
        EXPECT_EQ((Health { .properties = records(0, { record }) }).extensionState(now), expected)
            << isEnabled << isAwaiting << isUninstalling;
    }
    EXPECT_EQ((Health { .properties = records(0, {}) }).extensionState(now), State::absent);
    // One that is active counts before one that waits, wherever they stand.
    EXPECT_EQ((Health { .properties = records(0, { awaiting, active }) }).extensionState(now), State::active);
    EXPECT_EQ((Health { .properties = records(0, { {}, awaiting }) }).extensionState(now), State::awaitingApproval);
}

TEST(FilterHealth, TheStatusAndItsAgeFollowFromWhatIsFresh)
{
    struct Case {
        const char* name;
        Health health;
        Status status;
        std::optional<double> age;
    };
    const std::optional<double> none;
    for (const auto& [name, health, status, age] :
        std::initializer_list<Case> {
            { "nothing known", {}, Status::checking, none },
            { "own request", { .requestAwaitingApproval = true }, Status::awaitingApproval, 0 },
            { "own request over active",
                { .properties = records(5), .config = enabled(5), .requestAwaitingApproval = true },
                Status::awaitingApproval, 0 },

            { "waiting", { .properties = records(5, { awaiting }) }, Status::awaitingApproval, 5 },
            { "waiting, 300 s", { .properties = records(300, { awaiting }) }, Status::awaitingApproval, 300 },
            { "waiting, 300.001 s", { .properties = records(300.001, { awaiting }) }, Status::checking, none },
            { "absent", { .properties = records(5, {}), .config = enabled(1) }, Status::off, 5 },
            { "absent, 300 s", { .properties = records(300, {}) }, Status::off, 300 },
            { "absent, 300.001 s", { .properties = records(300.001, {}) }, Status::checking, none },
            { "absent, from the future", { .properties = records(-1, {}) }, Status::off, 0 },

            { "failed", { .properties = failed(0) }, Status::cantCheck, none },
            { "failed, 300 s", { .properties = failed(300), .config = enabled(0) }, Status::cantCheck, none },
            { "failed, 300.001 s", { .properties = failed(300.001) }, Status::checking, none },
            { "stale, then failed, 300 s", { .properties = records(301), .propertiesFailedAt = now - 300 },
                Status::cantCheck, none },
            { "stale, then failed, 300.001 s", { .properties = records(301), .propertiesFailedAt = now - 300.001 },
                Status::checking, none },
            { "fresh, then failed", { .properties = records(200, {}), .propertiesFailedAt = now }, Status::off, 200 },

            { "active, unread", { .properties = records(5) }, Status::checking, none },
            { "active, on", { .properties = records(5), .config = enabled(2) }, Status::on, 5 },
            { "active, on, older reading", { .properties = records(5), .config = enabled(8) }, Status::on, 8 },
            { "active, off", { .properties = records(5), .config = disabled(2) }, Status::off, 5 },
            { "active, on, 10 s", { .properties = records(0), .config = enabled(10) }, Status::on, 10 },
            { "active, off, 10 s", { .properties = records(0), .config = disabled(10) }, Status::off, 10 },
            { "active, on, 10.001 s", { .properties = records(0), .config = enabled(10.001) }, Status::checking, none },
            { "active, off, 11 s", { .properties = records(0), .config = disabled(11) }, Status::checking, none },
            { "active, unreadable, 10 s", { .properties = records(0), .config = unreadable(10) }, Status::cantCheck,
                none },
            { "active, unreadable, 10.001 s", { .properties = records(0), .config = unreadable(10.001) },
                Status::checking, none },
            { "active, 300 s", { .properties = records(300), .config = enabled(1) }, Status::on, 300 },
            { "active, 300.001 s", { .properties = records(300.001), .config = enabled(1) }, Status::checking, none },
            { "active, from the future", { .properties = records(-2), .config = enabled(-1) }, Status::on, 0 },
        }) {
        EXPECT_EQ(health.status(now), status) << name;
        EXPECT_EQ(health.statusAge(now), age) << name;
    }
}

TEST(FilterHealth, AnswersOlderThanWhatIsKnownAreDropped)
{
    Health health;
    health.recordProperties({ active }, 100);
    auto before = health;
    health.recordProperties({}, 99.999);
    health.recordPropertiesFailure(99.999, 101);
    EXPECT_EQ(health, before);
    health.recordProperties({}, 100);
    EXPECT_EQ(health.extensionState(101), State::absent);

    // A failure that was kept beside the records counts as the newest.
    health.recordPropertiesFailure(200, 200);
    before = health;
    health.recordProperties({ active }, 199);
    health.recordPropertiesFailure(199, 201);
    EXPECT_EQ(health, before);
    health.recordProperties({ active }, 200);
    EXPECT_EQ(health.extensionState(201), State::active);
    EXPECT_FALSE(health.propertiesFailedAt);

    Health failing;
    failing.recordPropertiesFailure(100, 100);
    before = failing;
    failing.recordProperties({ active }, 99);
    failing.recordPropertiesFailure(99, 100);
    EXPECT_EQ(failing, before);
    failing.recordProperties({ active }, 100);
    EXPECT_EQ(failing.extensionState(100), State::active);
}

TEST(FilterHealth, AFailureKeepsRecordsThatAreStillBelieved)
{
    struct Case {
        double failedAt;
        Status then;
        bool isKept;
    };
    for (const auto& [failedAt, then, isKept] : {
             Case { 300, Status::off, true }, // 200 s after the records.
             Case { 400, Status::off, true }, // 300 s.
             Case { 400.001, Status::cantCheck, false },
         }) {
        Health health;
        health.recordProperties({}, 100);
        health.recordPropertiesFailure(failedAt, failedAt);
        EXPECT_EQ(health.status(failedAt), then) << failedAt;
        EXPECT_EQ(health.propertiesFailedAt, isKept ? std::optional(failedAt) : std::nullopt) << failedAt;
        // Once the records have aged the failure speaks, for as long as it is believed itself.
        EXPECT_EQ(health.status(failedAt + 300), Status::cantCheck) << failedAt;
        EXPECT_EQ(health.status(failedAt + 300.001), Status::checking) << failedAt;
    }
}

}
