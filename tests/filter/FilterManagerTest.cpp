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
    void filterPropertiesRead(std::vector<ExtensionRecord>, double) override { }
    void filterPropertiesFailed(double) override { }
    void filterPreferencesRead(const FilterPreferences&, double at) override { preferencesAt.push_back(at); }
    void filterPreferencesFailed(double) override { }

    std::vector<double> preferencesAt;
};

ExtensionRecord extension(const char* shortVersion, const char* buildVersion, bool enabled = true)
{
    return { .isEnabled = enabled, .shortVersion = shortVersion, .buildVersion = buildVersion };
}

class FilterManagerTest : public testing::Test {
protected:
    void activate()
    {
        manager.activate([this](const FilterRequestEnd& end) { ends.push_back(end); });
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

TEST_F(FilterManagerTest, ARequestThatWaitsForTheUserIsJoinedAndEachCallerIsToldOfItsEndToo)
{
    activate();
    request().needUserApproval();
    mainLoop.runPosted();
    activate();
    EXPECT_EQ(system.requests.size(), 1U) << "one is under way";
    mainLoop.advance(FilterManager::requestTimeout);
    manager.refresh();
    EXPECT_TRUE(manager.isAwaitingUserApproval()) << "the user may take any time";
    const int asked = system.preferences.asked;
    request().end(ExtensionRequestResult::completed);
    mainLoop.runPosted();
    EXPECT_FALSE(manager.isAwaitingUserApproval());
    EXPECT_GT(system.preferences.asked, asked) << "what is true now is not what was read before";
    ASSERT_EQ(ends.size(), 4U);
    EXPECT_EQ(ends[1].outcome.kind, Kind::needsUserApproval);
    EXPECT_EQ(ends[3].outcome.kind, Kind::completed);
}

TEST_F(FilterManagerTest, WhatComesTooLateIsNotTakenForTheNextRequests)
{
    activate();
    mainLoop.advance(FilterManager::requestTimeout);
    manager.refresh();
    EXPECT_EQ(ends, std::vector { FilterRequestEnd { .outcome = { .kind = Kind::failed } } });
    activate();
    system.requests[0].needUserApproval();
    system.requests[0].askWhetherToReplace(extension("1.2.2", "7"), extension("1.2.3", "7"));
    mainLoop.runPosted();
    EXPECT_EQ(system.requests[0].replacement(), ExtensionReplacement::cancel);
    EXPECT_EQ(ends.size(), 1U);
}

TEST_F(FilterManagerTest, HowARequestEnds)
{
    struct Row {
        const char* name;
        std::optional<ExtensionRecord> existing; // Which the system asks about.
        std::expected<ExtensionRequestResult, FilterError> result;
        FilterRequestEnd expected;
    };
    const auto bundled = extension("1.2.3", "7");
    const FilterError denied { "OSSystemExtensionErrorDomain", 4, "denied" };
    const FilterRequestEnd replaced { .outcome = { .kind = Kind::completed, .replaced = true } };
    const Row rows[] {
        { "first of all", {}, ExtensionRequestResult::completed, { .outcome = { .kind = Kind::completed } } },
        { "an older one", extension("1.2.2", "9"), ExtensionRequestResult::completed, replaced },
        { "an older build", extension("1.2.3", "6"), ExtensionRequestResult::completed, replaced },
        { "not comparable", extension("1.2.3-beta", "7"), ExtensionRequestResult::completed, replaced },
        { "the same", bundled, ExtensionRequestResult::completed,
            { .outcome = { .kind = Kind::skipped }, .kept = Kept::extensionEnabled } },
        { "a newer one that is off", extension("1.3", "1", false), ExtensionRequestResult::completed,
            { .outcome = { .kind = Kind::skipped }, .kept = Kept::extensionOff } },
        { "reboot", {}, ExtensionRequestResult::willCompleteAfterReboot,
            { .outcome = { .kind = Kind::willCompleteAfterReboot } } },
        { "refused", {}, std::unexpected(denied), { .outcome = { .kind = Kind::failed }, .error = denied } },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ends.clear();
        activate();
        if (row.existing)
            request().askWhetherToReplace(*row.existing, bundled);
        if (row.expected.kept == Kept::no) // Keeping what is there ends the request.
            request().end(row.result);
        mainLoop.runPosted();
        ASSERT_EQ(ends.size(), 1U);
        EXPECT_EQ(ends[0], row.expected);
    }
}

TEST_F(FilterManagerTest, ARemovalTakesTheConfigurationFirstAndLeavesNothingOfARequest)
{
    const auto remove = [this] {
        ends.clear();
        manager.remove([this](const FilterRequestEnd& end) { ends.push_back(end); });
        mainLoop.runPosted();
    };
    const FilterError refused { "x", 1, {} };
    system.removal.result = std::unexpected(refused);
    remove();
    EXPECT_TRUE(system.requests.empty()) << "a filter that is configured keeps its extension";
    EXPECT_EQ(ends, std::vector { FilterRequestEnd({ .outcome = { .kind = Kind::failed }, .error = refused }) });
    system.removal.result = {};
    activate();
    request().needUserApproval();
    mainLoop.runPosted();
    remove();
    EXPECT_FALSE(manager.isAwaitingUserApproval()) << "nothing is to be approved any more";
    EXPECT_EQ(ends, std::vector { FilterRequestEnd { .outcome = { .kind = Kind::skipped } } });
    ASSERT_EQ(system.requests.size(), 2U);
    EXPECT_EQ(request().kind, FakeFilterSystem::RequestKind::deactivation);
    request().end(ExtensionRequestResult::willCompleteAfterReboot);
    mainLoop.runPosted();
    EXPECT_TRUE(manager.needsRestart());
    remove();
    request().end(std::unexpected(FilterError { "x", FilterSystem::extensionNotFoundCode, {} }));
    mainLoop.runPosted();
    EXPECT_EQ(ends.at(0).outcome.kind, Kind::completed) << "there was only a configuration";
    EXPECT_FALSE(manager.needsRestart());
}

}
