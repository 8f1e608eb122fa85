#include "filter/FilterManager.h"

#include "fakes/FakeFilterSystem.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Kind = LaunchActivationOutcome::Kind;
using Kept = FilterRequestEnd::Kept;

struct RecordingObserver final : FilterObserver {
    void filterPropertiesRead(std::vector<ExtensionRecord>, double at) override { propertiesAt.push_back(at); }
    void filterPropertiesFailed(double at) override { propertiesAt.push_back(-at); }
    void filterPreferencesRead(const FilterPreferences&, double at) override { preferencesAt.push_back(at); }
    void filterPreferencesFailed(double at) override { preferencesAt.push_back(-at); }

    std::vector<double> propertiesAt; // Negative for a failure.
    std::vector<double> preferencesAt;
};

ExtensionRecord extension(const char* shortVersion, const char* buildVersion, bool enabled = true)
{
    return { .isEnabled = enabled, .shortVersion = shortVersion, .buildVersion = buildVersion };
}

class FilterManagerTest : public testing::Test {
protected:
    void activate(FilterRequestReason reason)
    {
        manager.activate(reason, [this](const FilterRequestEnd& end) { ends.push_back(end); });
        mainLoop.runPosted();
    }

    FakeFilterSystem::Request& request() { return system.requests.back(); }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeSystemLog log;
    FakeFilterSystem system { mainLoop };
    RecordingObserver observer;
    std::vector<FilterRequestEnd> ends;
    FilterManager manager { system, mainLoop, clock, log, observer };
};

}

TEST_F(FilterManagerTest, EachQuestionIsOpenOnceAndGivenUpAfterTenSeconds)
{
    system.preferences.isHeld = true;
    for (int tick = 0; tick < 5; ++tick) {
        manager.refresh();
        mainLoop.advance(2);
    }
    EXPECT_EQ(system.preferences.asked, 1);
    EXPECT_EQ(system.properties.asked, 1) << "they were answered, and are not due before ten seconds";
    mainLoop.advance(0.1);
    manager.refresh();
    EXPECT_EQ(system.preferences.asked, 2);
    EXPECT_EQ(system.properties.asked, 2);
    system.preferences.answerOldest();
    mainLoop.runPosted();
    EXPECT_TRUE(observer.preferencesAt.empty()) << "the answer to a question that was given up";
    system.preferences.answerOldest();
    mainLoop.runPosted();
    EXPECT_EQ(observer.preferencesAt, std::vector { 1010.1 }) << "the time of the question";
}

TEST_F(FilterManagerTest, FailuresAreObservedToo)
{
    system.preferences.result = std::unexpected(FilterError { "x", 1, {} });
    system.properties.result = std::unexpected(FilterError { "x", 1, {} });
    manager.refresh();
    mainLoop.runPosted();
    EXPECT_EQ(observer.preferencesAt, std::vector { -1000.0 });
    EXPECT_EQ(observer.propertiesAt, std::vector { -1000.0 });
}

TEST_F(FilterManagerTest, WhatTheUserStartedIsParkedOnApprovalAndConfiguredInTheEnd)
{
    activate(FilterRequestReason::user);
    request().needUserApproval();
    mainLoop.runPosted();
    EXPECT_TRUE(manager.isAwaitingUserApproval());
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(ends[0].outcome.kind, Kind::needsUserApproval);

    activate(FilterRequestReason::user);
    EXPECT_EQ(system.requests.size(), 1U) << "one is under way";
    ASSERT_EQ(ends.size(), 2U);
    EXPECT_EQ(ends[1].outcome.kind, Kind::needsUserApproval);

    const int asked = system.preferences.asked;
    request().end(ExtensionRequestResult::completed);
    mainLoop.runPosted();
    EXPECT_FALSE(manager.isAwaitingUserApproval());
    EXPECT_EQ(system.enabling.asked, 1);
    EXPECT_GT(system.preferences.asked, asked) << "what is true now is not what was read before";
    EXPECT_EQ(ends.size(), 2U) << "each caller is told once";
}

TEST_F(FilterManagerTest, HowARequestEnds)
{
    struct Row {
        const char* name;
        std::optional<ExtensionRecord> existing; // Which the system asks about.
        std::expected<ExtensionRequestResult, FilterError> result;
        FilterRequestEnd expected;
        const char* described;
    };
    const auto bundled = extension("1.2.3", "7");
    const FilterError denied { "OSSystemExtensionErrorDomain", 4, "denied" };
    const Row rows[] {
        { "first of all", {}, ExtensionRequestResult::completed, { .outcome = { .kind = Kind::completed } },
            "completed" },
        { "an older one", extension("1.2.2", "9"), ExtensionRequestResult::completed,
            { .outcome = { .kind = Kind::completed, .replaced = true } },
            "completed, an older extension was replaced" },
        { "an older build", extension("1.2.3", "6"), ExtensionRequestResult::completed,
            { .outcome = { .kind = Kind::completed, .replaced = true } },
            "completed, an older extension was replaced" },
        { "not comparable", extension("1.2.3-beta", "7"), ExtensionRequestResult::completed,
            { .outcome = { .kind = Kind::completed, .replaced = true } },
            "completed, an older extension was replaced" },
        { "the same", bundled, ExtensionRequestResult::completed,
            { .outcome = { .kind = Kind::skipped }, .kept = Kept::extensionEnabled },
            "skipped, the extension is current" },
        { "a newer one that is off", extension("1.3", "1", false), ExtensionRequestResult::completed,
            { .outcome = { .kind = Kind::skipped }, .kept = Kept::extensionOff }, "skipped, the extension is current" },
        { "reboot", {}, ExtensionRequestResult::willCompleteAfterReboot,
            { .outcome = { .kind = Kind::willCompleteAfterReboot } }, "will complete after a restart of the Mac" },
        { "refused", {}, std::unexpected(denied), { .outcome = { .kind = Kind::failed }, .error = denied },
            "failed (OSSystemExtensionErrorDomain 4: denied)" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ends.clear();
        activate(FilterRequestReason::launch);
        if (row.existing)
            request().askWhetherToReplace(*row.existing, bundled);
        if (row.expected.kept == Kept::no) // Keeping what is there ends the request.
            request().end(row.result);
        mainLoop.runPosted();
        ASSERT_EQ(ends.size(), 1U);
        EXPECT_EQ(ends[0], row.expected);
        EXPECT_EQ(describe(ends[0]), row.described);
    }
    EXPECT_EQ(system.enabling.asked, 0) << "nobody asked for more than the replacement";
}

TEST_F(FilterManagerTest, RemovalTakesTheConfigurationFirst)
{
    system.removal.result = std::unexpected(FilterError { "x", 1, {} });
    manager.remove();
    mainLoop.runPosted();
    EXPECT_TRUE(system.requests.empty()) << "a filter that is configured keeps its extension";
    system.removal.result = {};
    manager.remove();
    mainLoop.runPosted();
    ASSERT_EQ(system.requests.size(), 1U);
    EXPECT_EQ(request().kind, FakeFilterSystem::RequestKind::deactivation);
    request().end(ExtensionRequestResult::completed);
    mainLoop.runPosted();
    EXPECT_EQ(log.lines.back(), "[FilterManager] the content filter is removed");
}

}
