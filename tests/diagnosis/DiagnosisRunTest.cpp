#include "diagnosis/DiagnosisRun.h"

#include "install/InstallScript.h"
#include "support/DiagnosisBench.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

class DiagnosisRunTest : public testing::Test, protected DiagnosisBench {
protected:
    DaemonHealth::State serviceAfter(const std::function<void()>& change)
    {
        change();
        finish();
        return facts.service;
    }
};

using StateCondition = DiagnosisFacts::SharedState::Condition;
using PreferencesCondition = DiagnosisFacts::Preferences::Condition;

}

TEST_F(DiagnosisRunTest, EverythingIsAskedOnceAndNothingIsChanged)
{
    defaults.set("pf.lastConclusive.contentFilter", std::string("off"));
    reply({ { "daemon_version", "1.2.3" }, { "auth_token", "a-token-of-the-service" } });
    notifications.authorization = NotificationAuthorization::denied;
    clients.result = true;
    finish();
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(facts.notifications, NotificationAuthorization::denied);
    EXPECT_EQ(notifications.requests, 0);
    EXPECT_EQ(sockets.sent, std::vector<std::string> { "{\"type\":\"get_status\"}\n" });
    EXPECT_TRUE(files.writes().empty());
    EXPECT_TRUE(files.folders().empty());
    EXPECT_TRUE(filterSystem.requests.empty());
    EXPECT_EQ(loginItem.registrations.asked, 0);
    EXPECT_EQ(services.launchChecks.asked, 0) << "the poll says more";

    EXPECT_TRUE(std::holds_alternative<DaemonHealth::Running>(facts.service));
    EXPECT_EQ(facts.filter, FilterStatus::on);
    EXPECT_EQ(facts.activeFilter, activeExtension);
    EXPECT_EQ(facts.clientRuns, true);
    EXPECT_EQ(facts.sharedState->condition, StateCondition::there);
    EXPECT_EQ(facts.preferences.condition, PreferencesCondition::there);
    EXPECT_EQ(facts.lastFilter, ConclusiveState::off) << "what was last seen is not what is seen now";
    EXPECT_EQ(facts.lastService, std::nullopt);
    EXPECT_EQ(secrets, std::vector<std::string> { "a-token-of-the-service" });
    mainLoop.advance(60);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(sockets.interrupts, 0);
}

TEST_F(DiagnosisRunTest, TheFilesOfTheClientAreLookedAtWithoutTrust)
{
    const std::pair<PathFacts, PreferencesCondition> preferences[] {
        { {}, PreferencesCondition::none },
        { { .kind = PathKind::file, .mayRead = false }, PreferencesCondition::unreadable },
        { { .kind = PathKind::unknown }, PreferencesCondition::unreadable },
        { { .kind = PathKind::folder, .mayRead = true }, PreferencesCondition::damaged },
    };
    for (const auto& [found, condition] : preferences) {
        paths["/preferences"] = found;
        finish();
        EXPECT_EQ(facts.preferences.condition, condition);
    }
    paths.clear();
    files.replaceFromOutside("/preferences", "torn");
    clients.result = false;
    const std::pair<std::function<void()>, StateCondition> states[] {
        { [this] { paths[stateFile] = { .kind = PathKind::folder, .mayRead = true }; }, StateCondition::noFile },
        { [this] { paths[stateFile] = { .kind = PathKind::file, .mayRead = false }; }, StateCondition::unreadable },
        { [this] { files.replaceFromOutside(stateFile, "{\"shouldBlock\":false}"); }, StateCondition::outOfDate },
        { [this] { files.replaceFromOutside(stateFile, "{"); }, StateCondition::outOfDate },
        { [this] { files.removeFromOutside(stateFile); }, StateCondition::missing },
    };
    for (const auto& [change, condition] : states) {
        paths.clear();
        reply(Json::object());
        change();
        finish();
        EXPECT_EQ(facts.sharedState->condition, condition) << static_cast<int>(condition);
        EXPECT_EQ(facts.preferences.condition, PreferencesCondition::damaged);
    }
}

TEST_F(DiagnosisRunTest, AClientThatMayBeAboutToWriteItsFileIsGivenTheTimeForIt)
{
    // The lease is another one in each answer.
    reply({ { "lease_until_uptime_ns", 7 } });
    const auto written = *files.contents(stateFile);
    reply({ { "lease_until_uptime_ns", 8 } });
    files.replaceFromOutside(stateFile, written);
    finish();
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(facts.sharedState->condition, StateCondition::there);

    reply({ { "api_base_url", "https://a.example" } });
    const auto newer = *files.contents(stateFile);
    for (const bool clientWrites : { true, false }) {
        reply({ { "api_base_url", "https://a.example" } });
        files.removeFromOutside(stateFile);
        finish();
        EXPECT_EQ(ends, 1) << "too early";
        if (clientWrites)
            files.replaceFromOutside(stateFile, newer);
        mainLoop.advance(DiagnosisRun::secondLookAfter);
        EXPECT_EQ(ends, 2);
        EXPECT_EQ(facts.sharedState->condition, clientWrites ? StateCondition::there : StateCondition::missing);
        ends = 1;
    }
}

TEST_F(DiagnosisRunTest, ARemovalIsToldByTheServiceOrByWhatItLeaves)
{
    using Stage = DiagnosisFacts::Removal::Stage;
    const InstallPaths installed { .bundledProgram = {}, .bundledPropertyList = {} };
    const auto record = [](const char* state, double finishingBy) {
        return Json { { "removal",
            { { "state", state }, { "launch", "a" }, { "launch_order", 1 }, { "seq", 1 },
                { "finishing_by", finishingBy } } } };
    };
    struct Case {
        Json answer;
        bool hasMarker; // Made in 1970.
        double now;
        Stage stage;
    };
    const Case cases[] {
        { Json::object(), false, 1000, Stage::none },
        { record("pending", 0), false, 1000, Stage::pending },
        { record("committed", 0), false, 1000, Stage::finishing },
        { record("finishing", 990), false, 1000, Stage::finishing },
        { record("finishing", 960), false, 1000, Stage::overdue },
        { Json::object(), true, 60, Stage::atWork },
        { Json::object(), true, 600, Stage::cutShort },
        { record("finishing", 990), true, 1000, Stage::finishing },
    };
    for (const auto& [answer, hasMarker, now, stage] : cases) {
        files.removeFromOutside(installed.removalMarker());
        if (hasMarker)
            files.replaceFromOutside(installed.removalMarker(), "");
        reply(answer);
        clock.setWallSeconds(now);
        finish();
        EXPECT_EQ(facts.removal.stage, stage) << answer.dump() << hasMarker << now;
        EXPECT_FALSE(facts.removal.canGoOn) << "nothing would start the service";
    }
    files.replaceFromOutside(installed.propertyList(), "");
    finish();
    EXPECT_TRUE(facts.removal.canGoOn);
}

TEST_F(DiagnosisRunTest, TheServicesStateSaysWhyItDoesNotAnswer)
{
    using Health = DaemonHealth;
    sockets.peer = FakeLocalSockets::Peer::absent;
    EXPECT_TRUE(std::holds_alternative<Health::NotRunning>(serviceAfter([] { })));
    EXPECT_TRUE(std::holds_alternative<Health::TurnedOffInSettings>(
        serviceAfter([this] { services.backgroundItems.result = BackgroundItem::requiresApproval; })));
    EXPECT_TRUE(
        std::holds_alternative<Health::NotInstalled>(serviceAfter([this] { services.programIsInstalled = false; })));
    EXPECT_TRUE(std::holds_alternative<Health::Unreachable>(serviceAfter([this] {
        sockets.peer = FakeLocalSockets::Peer::listens;
        sockets.pieces = { "nonsense\n" };
    })));
}

TEST_F(DiagnosisRunTest, AServiceWithoutAValidCredentialNeedsASignIn)
{
    for (const auto& additions : { Json { { "has_device_token", false } }, Json { { "auth_token_invalid", true } } }) {
        reply(additions);
        finish();
        const auto* const answer = std::get_if<DiagnosisFacts::Answer>(&facts.contact);
        ASSERT_TRUE(answer) << additions.dump();
        EXPECT_FALSE(answer->isSignedIn) << additions.dump();
    }
}

TEST_F(DiagnosisRunTest, WhoeverStaysSilentHoldsItForTwelveSeconds)
{
    filterSystem.properties.isHeld = true;
    filterSystem.preferences.isHeld = true;
    services.backgroundItems.isHeld = true;
    loginItem.statuses.isHeld = true;
    clients.isHeld = true;
    begin(); // The queue does not come back either.
    mainLoop.advance(11.9);
    EXPECT_EQ(ends, 0);
    mainLoop.advance(0.2);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(sockets.interrupts, 1) << "what is blocked in a socket is let go";
    EXPECT_TRUE(std::holds_alternative<DiagnosisFacts::NoAnswerInTime>(facts.contact));
    EXPECT_TRUE(std::holds_alternative<DaemonHealth::Unreachable>(facts.service));
    EXPECT_EQ(facts.filter, FilterStatus::checking);
    EXPECT_EQ(facts.backgroundItem, BackgroundItem::unknown);
    EXPECT_EQ(facts.loginItem, std::nullopt);
    EXPECT_EQ(facts.clientRuns, std::nullopt);
    EXPECT_TRUE(diagnose(facts).needsUser());

    queue.runAll();
    filterSystem.properties.answerAll();
    clients.answerAll();
    mainLoop.runPosted();
    EXPECT_EQ(ends, 1);
}

}
