#include "filter/LaunchFilterActivationPolicy.h"

#include <gtest/gtest.h>

namespace brevanta::LaunchFilterActivationPolicy {

namespace {

constexpr double now = 1000;

using Text = std::optional<std::string>;

ExtensionRecord active(Text shortVersion, Text buildVersion)
{
    return { .isEnabled = true, .shortVersion = std::move(shortVersion), .buildVersion = std::move(buildVersion) };
}

const ExtensionRecord bundled = active("1.3", "10");
const ExtensionRecord older = active("1.2", "10");

FilterHealth seen(std::vector<ExtensionRecord> records, double age = 0)
{
    FilterHealth health;
    health.recordProperties(std::move(records), now - age);
    return health;
}

}

TEST(LaunchFilterActivationPolicy, AnActiveExtensionIsReplacedOnlyByANewerOne)
{
    struct Case {
        Text shortVersion;
        Text buildVersion;
        Decision expected;
    };
    for (const auto& [shortVersion, buildVersion, expected] : std::initializer_list<Case> {
             { "1.2", "10", Decision::activate },
             { "1.2", "99", Decision::activate },
             { "1.2", std::nullopt, Decision::activate },
             { "1.3", "9", Decision::activate },
             { "1.3.0", "9", Decision::activate },
             { "1.3", "10", Decision::nothingToDo },
             { "1.3", "11", Decision::nothingToDo },
             { "1.10", "9", Decision::nothingToDo },
             { "1.3", std::nullopt, Decision::nothingToDo },
             { "1.3", "9b", Decision::nothingToDo },
             { "1.2-beta", "9", Decision::nothingToDo },
             { std::nullopt, "9", Decision::nothingToDo },
         })
        EXPECT_EQ(decide(seen({ active(shortVersion, buildVersion) }), bundled, LaunchAttempt::notYet, now), expected)
            << shortVersion.value_or("none") << " (" << buildVersion.value_or("none") << ")";

    EXPECT_EQ(decide(seen({ older }), std::nullopt, LaunchAttempt::notYet, now), Decision::nothingToDo);
    EXPECT_EQ(decide(seen({ older }), active({}, "10"), LaunchAttempt::notYet, now), Decision::nothingToDo);
}

TEST(LaunchFilterActivationPolicy, TheFirstActivationIsTheUsersAndNothingIsDecidedBlindly)
{
    auto awaiting = older;
    awaiting.isAwaitingUserApproval = true;
    auto leaving = older;
    leaving.isUninstalling = true;
    auto disabled = older;
    disabled.isEnabled = false;
    FilterHealth failed;
    failed.recordPropertiesFailure(now, now);
    auto withFailure = seen({ older }, 200);
    withFailure.recordPropertiesFailure(now, now);
    auto withOwnRequest = FilterHealth {};
    withOwnRequest.requestAwaitingApproval = true;
    struct Case {
        const char* name;
        FilterHealth health;
        Decision expected;
    };
    for (const auto& [name, health, expected] : std::initializer_list<Case> {
             { "none", seen({}), Decision::nothingToSubmit },
             { "disabled", seen({ disabled }), Decision::nothingToSubmit },
             { "awaiting approval", seen({ awaiting }), Decision::nothingToDo },
             { "leaving", seen({ leaving }), Decision::nothingToDo },
             { "older beside disabled and leaving", seen({ disabled, leaving, older }), Decision::activate },
             { "older beside current", seen({ older, bundled }), Decision::nothingToDo },
             { "300 s old", seen({ older }, 300), Decision::activate },
             { "300.001 s old", seen({ older }, 300.001), Decision::undecided },
             { "fresh, then failed", withFailure, Decision::activate },
             { "failed", failed, Decision::undecided },
             { "never asked", {}, Decision::undecided },
             { "never asked, own request", withOwnRequest, Decision::undecided },
         }) {
        EXPECT_EQ(decide(health, bundled, LaunchAttempt::notYet, now), expected) << name;
        EXPECT_EQ(decide(health, bundled, LaunchAttempt::made, now), Decision::nothingToDo) << name;
    }
}

}
