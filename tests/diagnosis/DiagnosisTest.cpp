#include "diagnosis/Diagnosis.h"
#include "diagnosis/DiagnosisText.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

ExtensionRecord filterOf(const std::string& version)
{
    return { .isEnabled = true, .shortVersion = version, .buildVersion = version };
}

// Everything as it should be.
DiagnosisFacts wellFacts()
{
    return { .version = "1.2.3",
        .bundledServiceVersion = "1.2.3",
        .home = "/Users/ada",
        .location = { .resolvedBundleURL = "/Applications/Brevanta.app",
            .resolvedSystemApplicationsURL = "/Applications",
            .volumeIsReadOnly = false,
            .resolvedUserApplicationsURL = "/Users/ada/Applications" },
        .system = { .text = "macOS 14.0.0" },
        .minimumSystem = "13.3",
        .isAdministrator = true,
        .clientRuns = true,
        .log = "in a drawer",
        .preferences = { .file = "/Users/ada/preferences",
            .condition = DiagnosisFacts::Preferences::Condition::there,
            .folder = {} },
        .removal = { .marker = "/removing" },
        .socketPath = "/var/run/service.sock",
        .contact = DiagnosisFacts::Answer { .version = "1.2.3", .isSignedIn = true },
        .service = DaemonHealth::Running { "1.2.3", DaemonUpgradePolicy::Current { "1.2.3" } },
        .backgroundItem = BackgroundItem::allowed,
        .filter = FilterStatus::on,
        .filterLine = { "✓ Content Filter", ComponentAction::none },
        .activeFilter = filterOf("1.2.3"),
        .bundledFilter = filterOf("1.2.3"),
        .sharedState = { { .file = "/Users/ada/shared/state.json",
            .condition = DiagnosisFacts::SharedState::Condition::there,
            .folder = {} } },
        .nativeMessaging = { .launcherFile = "/Library/Application Support/Brevanta/native-host",
            .launcher = FilePlacement::inPlace,
            .manifests = { { .browser = "Chromium",
                               .file = "/Users/ada/Library/Application Support/Chromium/manifest.json",
                               .placement = FilePlacement::inPlace },
                { .browser = "Arc", .file = "/Users/ada/arc.json", .placement = std::nullopt } } },
        .confinedBrowsers = {},
        .sounds = { { .name = "gain.aiff", .isBundled = true, .placement = FilePlacement::inPlace } },
        .soundFolder = "/Users/ada/Library/Sounds",
        .folders = {},
        .notifications = NotificationAuthorization::authorized,
        .updates = { .feed = "https://updates.example.com/feed?ticket=abc", .isUsable = true },
        .reportsCrashes = true,
        .loginItem = LoginItemStatus::enabled,
        .lastService = ConclusiveState::on,
        .lastFilter = ConclusiveState::on };
}

const Finding* finding(const Diagnosis& diagnosis, std::string_view key)
{
    const auto found = std::ranges::find(diagnosis.findings, key, &Finding::key);
    return found == diagnosis.findings.end() ? nullptr : &*found;
}

struct Situation {
    std::string key; // Of the finding that needs the user.
    std::string said; // A part of what it says.
    std::string remedy; // A part of the one thing to do.
    std::function<void(DiagnosisFacts&)> change;
};

}

TEST(DiagnosisTest, WhatIsWellNeedsNobody)
{
    const auto diagnosis = diagnose(wellFacts());
    EXPECT_FALSE(diagnosis.needsUser());
    EXPECT_FALSE(diagnosis.remedy());
    EXPECT_TRUE(diagnosisText(diagnosis, {}).ends_with("\nAll is well.\n"));
}

TEST(DiagnosisTest, WhatTheUserNeedNotChangeIsOnlyNoticed)
{
    auto facts = wellFacts();
    facts.updates = {};
    facts.reportsCrashes = false;
    facts.loginItem = LoginItemStatus::requiresApproval;
    facts.notifications = NotificationAuthorization::denied;
    facts.clientRuns = std::nullopt;
    facts.confinedBrowsers = { "Chromium (Snap)" };
    facts.lastService = std::nullopt;
    const auto diagnosis = diagnose(facts);
    EXPECT_FALSE(diagnosis.needsUser());
    EXPECT_TRUE(diagnosisText(diagnosis, {}).ends_with("\nNothing needs you. What begins with -- is worth knowing.\n"));
    for (const auto* key :
        { "updater", "crashReports", "loginItem", "notifications", "nativeMessaging.confined", "client.running" }) {
        ASSERT_TRUE(finding(diagnosis, key)) << key;
        EXPECT_EQ(finding(diagnosis, key)->verdict, FindingVerdict::notice) << key;
    }
}

TEST(DiagnosisTest, EachTroubleNamesTheOneThingToDo)
{
    const auto serviceIs = [](const DaemonHealth::State& state, const DiagnosisFacts::Contact& contact) {
        return [state, contact](DiagnosisFacts& facts) {
            facts.service = state;
            facts.contact = contact;
        };
    };
    const auto filterIs = [](FilterStatus status, const ComponentLine& line) {
        return [status, line](DiagnosisFacts& facts) {
            facts.filter = status;
            facts.filterLine = line;
        };
    };
    using Condition = DiagnosisFacts::SharedState::Condition;
    const auto sharedStateIs = [](Condition condition) {
        return [condition](DiagnosisFacts& facts) { facts.sharedState->condition = condition; };
    };
    const auto sharedFolderHas = [](WriteObstacle obstacle) {
        return [obstacle](DiagnosisFacts& facts) { facts.sharedState->folder = { obstacle, "/Users/ada/shared" }; };
    };
    const auto launcherIsMissing = [](WriteObstacle obstacle, std::optional<bool> isAdministrator) {
        return [=](DiagnosisFacts& facts) {
            facts.nativeMessaging.launcher = FilePlacement::missing;
            facts.nativeMessaging.manifests.front().placement = FilePlacement::missing;
            facts.isAdministrator = isAdministrator;
            facts.folders["/Library/Application Support/Brevanta"] = { obstacle, "/Library" };
        };
    };
    using Preferences = DiagnosisFacts::Preferences::Condition;
    const auto preferencesAre = [](Preferences condition) {
        return [condition](DiagnosisFacts& facts) { facts.preferences.condition = condition; };
    };
    using Stage = DiagnosisFacts::Removal::Stage;
    // Whatever else is wrong then is left alone.
    const auto removalIs = [](Stage stage, bool canGoOn = false) {
        return [=](DiagnosisFacts& facts) {
            facts.removal.stage = stage;
            facts.removal.canGoOn = canGoOn;
            facts.service = DaemonHealth::NotInstalled {};
            facts.contact = DiagnosisFacts::Answer { .version = "1.2.3" };
            facts.filter = FilterStatus::off;
            facts.filterLine = { "⚠ Install Content Filter…", ComponentAction::activateFilter };
            facts.activeFilter = filterOf("1.2.2");
            facts.sharedState->condition = Condition::outOfDate;
        };
    };
    const DaemonFailure refused = DaemonError { DaemonError::Kind::connectionFailed, {} };
    const Situation situations[] {
        { "system.version", "older than this application needs", "macOS 13.3 or later",
            [](DiagnosisFacts& facts) { facts.system.isSupported = false; } },
        { "storage", "full", "Make room", sharedFolderHas(WriteObstacle::fullVolume) },
        { "storage", "read-only", "writable again", sharedFolderHas(WriteObstacle::readOnlyVolume) },
        { "preferences", "damaged", "Quit Brevanta, move /Users/ada/preferences",
            preferencesAre(Preferences::damaged) },
        { "preferences", "may not be read", "let your user read", preferencesAre(Preferences::unreadable) },
        { "removal", "under way", "Wait", removalIs(Stage::finishing) },
        { "removal", "not finished in time", "\"Finish Removal\"", removalIs(Stage::overdue) },
        { "removal", "being taken away", "Wait", removalIs(Stage::atWork) },
        { "removal", "left /removing", "Restart this Mac", removalIs(Stage::cutShort, true) },
        { "removal", "left /removing", "delete /removing", removalIs(Stage::cutShort) },
        { "client.running", "does not run", "Open Brevanta.",
            [](DiagnosisFacts& facts) {
                facts.clientRuns = false;
                facts.sharedState->condition = Condition::outOfDate;
            } },
        { "application.location", "~/Downloads/Brevanta.app, outside of", "Move Brevanta to Applications",
            [](DiagnosisFacts& facts) { facts.location.resolvedBundleURL = "~/Downloads/Brevanta.app"; } },
        { "service.health", "not installed", "\"⚠ Install Blocking Service…\"",
            serviceIs(DaemonHealth::NotInstalled {}, DiagnosisFacts::NoSocket {}) },
        { "service.health", "does not run", "\"⚠ Restart Blocking Service…\"",
            serviceIs(DaemonHealth::NotRunning {}, refused) },
        { "service.health", "not talk to it", "Ask an administrator of this Mac to type the password",
            [](DiagnosisFacts& facts) {
                facts.service = DaemonHealth::NotRunning {};
                facts.contact = DiagnosisFacts::NotPermitted {};
                facts.isAdministrator = false;
            } },
        { "service.health", "turned off", "\"⚠ Blocking Service Turned Off in System Settings…\"",
            serviceIs(DaemonHealth::TurnedOffInSettings {}, DiagnosisFacts::NoSocket {}) },
        { "service.health", "does not answer as it should", "\"⚠ Restart Blocking Service…\"",
            serviceIs(DaemonHealth::Unreachable {}, DiagnosisFacts::NoAnswerInTime {}) },
        { "service.health", "older than the one in the application", "Blocking Service",
            serviceIs(DaemonHealth::Running { "1.2.2", DaemonUpgradePolicy::Upgrade { "1.2.2", "1.2.3" } },
                DiagnosisFacts::Answer { .version = "1.2.2", .isSignedIn = true }) },
        { "account", "no valid sign-in", "sign in",
            [](DiagnosisFacts& facts) { facts.contact = DiagnosisFacts::Answer { .version = "1.2.3" }; } },
        { "filter.state", "waits for your approval", "\"⚠ Approve Content Filter in System Settings…\"",
            filterIs(FilterStatus::awaitingApproval,
                { "⚠ Approve Content Filter in System Settings…", ComponentAction::openFilterApproval }) },
        { "filter.state", "off", "Turn on Brevanta's content filter",
            filterIs(FilterStatus::off, { "⚠ Content Filter: Off", ComponentAction::none }) },
        { "filter.state", "the system cannot say", "Ask again",
            filterIs(FilterStatus::cantCheck, { "Content Filter: Can't check", ComponentAction::none }) },
        { "filter.state", "next restart", "Restart this Mac; then",
            [](DiagnosisFacts& facts) {
                facts.filter = FilterStatus::off;
                facts.filterLine = { "⚠ Install Content Filter…", ComponentAction::activateFilter };
                facts.activeFilter.reset();
                facts.filterIsUninstalling = true;
            } },
        { "filter.version", "1.2.2, older than the one in the application, 1.2.3", "open it again: it replaces",
            [](DiagnosisFacts& facts) { facts.activeFilter = filterOf("1.2.2"); } },
        { "filter.sharedState", "no folder", "Install Brevanta anew",
            [](DiagnosisFacts& facts) { facts.sharedState.reset(); } },
        { "filter.sharedState", "takes no files", "Allow your user to write in the folder /Users/ada/shared.",
            sharedFolderHas(WriteObstacle::ownPermissions) },
        { "filter.sharedState", "may not write", "As an administrator, let your user write",
            sharedFolderHas(WriteObstacle::permissions) },
        { "filter.sharedState", "is no folder", "Move", sharedFolderHas(WriteObstacle::noFolder) },
        { "filter.sharedState", "is no file", "Move", sharedStateIs(Condition::noFile) },
        { "filter.sharedState", "missing", "open it again", sharedStateIs(Condition::missing) },
        { "filter.sharedState", "not what the service says", "open it again", sharedStateIs(Condition::outOfDate) },
        { "nativeMessaging.launcher", "your user may not write in /Library",
            "Ask an administrator of this Mac to make the folder /Library/Application Support/Brevanta and give",
            launcherIsMissing(WriteObstacle::permissions, false) },
        { "nativeMessaging.launcher", "the disk with /Library is full", "Make room",
            launcherIsMissing(WriteObstacle::fullVolume, true) },
        { "nativeMessaging.launcher", "missing", "open it again",
            [](DiagnosisFacts& facts) { facts.nativeMessaging.launcher = FilePlacement::missing; } },
        { "nativeMessaging.manifest.chromium", "not as this version writes it", "open it",
            [](DiagnosisFacts& facts) {
                facts.nativeMessaging.manifests.front().placement = FilePlacement::different;
            } },
        { "sounds", "gain.aiff", "open it",
            [](DiagnosisFacts& facts) { facts.sounds.front().placement = FilePlacement::different; } },
        { "sounds", "gain.aiff", "Install Brevanta anew",
            [](DiagnosisFacts& facts) { facts.sounds.front() = { .name = "gain.aiff", .isBundled = false }; } },
    };
    for (const auto& situation : situations) {
        auto facts = wellFacts();
        situation.change(facts);
        const auto diagnosis = diagnose(facts);
        const auto* const wrong = finding(diagnosis, situation.key);
        ASSERT_TRUE(wrong) << situation.key;
        EXPECT_EQ(wrong->verdict, FindingVerdict::needsUser) << situation.key;
        EXPECT_NE(wrong->text.find(situation.said), std::string::npos) << wrong->text;
        EXPECT_EQ(diagnosis.remedy(), wrong->remedy) << situation.key;
        EXPECT_NE(wrong->remedy.find(situation.remedy), std::string::npos) << wrong->remedy;
        EXPECT_EQ(std::ranges::count(diagnosis.findings, FindingVerdict::needsUser, &Finding::verdict), 1)
            << situation.key << ": one trouble is said once";
    }
}

TEST(DiagnosisTest, TheCauseIsPutRightBeforeWhatFollowsFromIt)
{
    auto facts = wellFacts();
    facts.nativeMessaging.launcher = FilePlacement::missing;
    facts.service = DaemonHealth::NotInstalled {};
    facts.contact = DiagnosisFacts::NoSocket {};
    facts.location.resolvedBundleURL = "/Volumes/Brevanta/Brevanta.app";
    facts.location.volumeIsReadOnly = true;
    const auto first = diagnose(facts).remedy();
    ASSERT_TRUE(first);
    EXPECT_NE(first->find("Drag Brevanta from the disk image"), std::string::npos) << *first;
}

TEST(DiagnosisTest, WhatIsSaidHoldsNoSecretNoHomeAndNothingThatATerminalObeys)
{
    const std::string token = "wq8Zp2LxT5vN";
    auto facts = wellFacts();
    facts.contact = DaemonError { DaemonError::Kind::rejected, "unknown token " + token + "\x1b[2J\nok" };
    facts.service = DaemonHealth::Unreachable {};
    facts.activeFilter = filterOf("1\xff");
    facts.nativeMessaging.manifests.back()
        = { .browser = "Arc", .file = "/Users/adam/x", .placement = FilePlacement::missing };
    const std::vector secrets { token };
    const auto diagnosis = diagnose(facts);
    const DiagnosisPrivacy privacy { .home = facts.home, .secrets = secrets };
    for (const auto format : { DiagnosisFormat::text, DiagnosisFormat::json }) {
        const auto output = diagnosisOutput(diagnosis, privacy, format);
        EXPECT_EQ(output.find(token), std::string::npos) << output;
        EXPECT_EQ(output.find("ticket=abc"), std::string::npos) << output;
        EXPECT_EQ(output.find('\x1b'), std::string::npos) << output;
        EXPECT_EQ(output.find("/Users/ada/"), std::string::npos) << output;
        EXPECT_NE(output.find("/Users/adam/x"), std::string::npos) << "another user's folder begins with the same";
        EXPECT_EQ(output.back(), '\n');
    }
    const auto parsed = nlohmann::json::parse(diagnosisJson(diagnosis, privacy), nullptr, false);
    ASSERT_TRUE(parsed.is_object());
    EXPECT_EQ(parsed["schema"], 1);
    EXPECT_EQ(parsed["ok"], false);
    EXPECT_EQ(parsed["remedy"], *diagnosis.remedy());
    EXPECT_EQ(parsed["findings"].size(), diagnosis.findings.size());
    EXPECT_TRUE(parsed["findings"][0]["remedy"].is_null());
    EXPECT_TRUE(parsed["findings"][0]["state"].is_null());
    EXPECT_EQ(parsed["findings"][1]["state"], "eligible");
}

}
