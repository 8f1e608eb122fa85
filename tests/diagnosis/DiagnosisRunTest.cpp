#include "diagnosis/DiagnosisRun.h"

#include "diagnosis/Diagnosis.h"
#include "fakes/FakeFileStore.h"
#include "fakes/FakeLocalSockets.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/ManualExecutor.h"
#include "support/ComponentBench.h"
#include "support/StatusReply.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

constexpr auto socketPath = "/var/run/service.sock";

// A machine on which all is well, until a test changes something.
class DiagnosisRunTest : public testing::Test {
protected:
    DiagnosisRunTest()
    {
        services.backgroundItems.result = BackgroundItem::allowed;
        services.programIsInstalled = true;
        filterSystem.properties.result = std::vector { activeExtension };
        filterSystem.preferences.result = filterSwitchedOn;
        loginItem.statuses.result = LoginItemStatus::enabled;
        files.replaceFromOutside(socketPath, "");
        reply({ { "daemon_version", "1.2.3" }, { "has_device_token", true } });
    }

    void reply(const Json& additions) { sockets.pieces = { statusReply(additions).dump() + "\n" }; }

    void begin()
    {
        run.emplace(DiagnosisPorts { .mainLoop = mainLoop,
                        .daemonQueue = queue,
                        .localSockets = sockets,
                        .clock = clock,
                        .defaults = defaults,
                        .services = services,
                        .filterSystem = filterSystem,
                        .files = files,
                        .loginItem = loginItem,
                        .sharedContainer = [] { return std::filesystem::path("/shared"); },
                        .getNotificationAuthorization
                        = [this](auto onEnd) { notifications.getAuthorization(std::move(onEnd)); },
                        .parseUrl = [](const std::string&) { return std::optional<Url>(); },
                        .location = [] { return AppLocationPolicy::Context {}; },
                        .resources = "/Resources",
                        .home = "/Users/ada",
                        .bundle = "/Applications/Brevanta.app",
                        .updaterFeed = {},
                        .updaterKey = {} },
            BuildConfiguration { .version = "1.2.3", .bundleIdentifier = {}, .root = "/", .socketPath = socketPath },
            [this](const DiagnosisFacts& found, const std::vector<std::string>& theSecrets) {
                ++ends;
                facts = found;
                secrets = theSecrets;
            });
        run->start();
    }
    void finish()
    {
        begin();
        queue.runAll();
        mainLoop.runPosted();
    }
    DaemonHealth::State serviceAfter(const std::function<void()>& change)
    {
        change();
        finish();
        return facts.service;
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    ManualExecutor queue;
    FakeLocalSockets sockets;
    FakeUserDefaults defaults;
    FakeServiceManager services { mainLoop };
    FakeFilterSystem filterSystem { mainLoop };
    FakeFileStore files;
    FakeLoginItem loginItem { mainLoop };
    FakeNotificationCenter notifications { mainLoop };
    int ends { 0 };
    DiagnosisFacts facts;
    std::vector<std::string> secrets;
    std::optional<DiagnosisRun> run;
};

}

TEST_F(DiagnosisRunTest, EverythingIsAskedOnceAndNothingIsChanged)
{
    defaults.set("pf.lastConclusive.contentFilter", std::string("off"));
    reply({ { "daemon_version", "1.2.3" }, { "auth_token", "a-token-of-the-service" } });
    notifications.authorization = NotificationAuthorization::denied;
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
    EXPECT_EQ(facts.filterVersion, "1.2.3");
    EXPECT_EQ(facts.lastFilter, ConclusiveState::off) << "what was last seen is not what is seen now";
    EXPECT_EQ(facts.lastService, std::nullopt);
    EXPECT_EQ(secrets, std::vector<std::string> { "a-token-of-the-service" });
    mainLoop.advance(60);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(sockets.interrupts, 0);

    using Condition = DiagnosisFacts::SharedState::Condition;
    EXPECT_EQ(facts.sharedState->condition, Condition::missing) << "the client makes the folder, too";
    files.replaceFromOutside(facts.sharedState->file, "{}");
    finish();
    EXPECT_EQ(facts.sharedState->condition, Condition::there);
    files.folderFailure = FileStoreError { "Permission denied" };
    finish();
    EXPECT_EQ(facts.sharedState->condition, Condition::notWritable);
}

TEST_F(DiagnosisRunTest, TheServicesStateSaysWhyItDoesNotAnswer)
{
    using Health = DaemonHealth;
    sockets.peer = FakeLocalSockets::Peer::absent;
    EXPECT_TRUE(std::holds_alternative<Health::NotRunning>(serviceAfter([] { })));
    EXPECT_EQ(facts.contact, DiagnosisFacts::Contact(DaemonFailure(DaemonError {})));
    EXPECT_TRUE(std::holds_alternative<Health::TurnedOffInSettings>(
        serviceAfter([this] { services.backgroundItems.result = BackgroundItem::requiresApproval; })));
    EXPECT_TRUE(std::holds_alternative<Health::NotInstalled>(serviceAfter([this] {
        services.programIsInstalled = false;
        files.removeFromOutside(socketPath);
    })));
    EXPECT_EQ(facts.contact, DiagnosisFacts::Contact(DiagnosisFacts::NoSocket {}));
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
    EXPECT_TRUE(diagnose(facts).needsUser());

    queue.runAll();
    filterSystem.properties.answerAll();
    mainLoop.runPosted();
    EXPECT_EQ(ends, 1);
}

}
