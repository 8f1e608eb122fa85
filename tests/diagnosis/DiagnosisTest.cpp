#include "diagnosis/Diagnosis.h"
#include "diagnosis/DiagnosisText.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

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
        .socketPath = "/var/run/service.sock",
        .contact = DiagnosisFacts::Answer { .version = "1.2.3", .isSignedIn = true },
        .service = DaemonHealth::Running { "1.2.3", DaemonUpgradePolicy::Current { "1.2.3" } },
        .backgroundItem = BackgroundItem::allowed,
        .filter = FilterStatus::on,
        .filterLine = { "✓ Content Filter", ComponentAction::none },
        .filterVersion = "1.2.3",
        .sharedState
        = { { .file = "/Users/ada/shared/state.json", .condition = DiagnosisFacts::SharedState::Condition::there } },
        .nativeMessaging = { .launcherFile = "/Library/Application Support/Brevanta/native-host",
            .launcher = FilePlacement::inPlace,
            .manifests = { { .browser = "Chromium",
                               .file = "/Users/ada/Library/Application Support/Chromium/manifest.json",
                               .placement = FilePlacement::inPlace },
                { .browser = "Arc", .file = "/Users/ada/arc.json", .placement = std::nullopt } } },
        .confinedBrowsers = {},
        .sounds = { { .name = "gain.aiff", .isBundled = true, .placement = FilePlacement::inPlace } },
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
    facts.backgroundItem = BackgroundItem::unknown;
    facts.notifications = NotificationAuthorization::denied;
    facts.confinedBrowsers = { "Chromium (Snap)" };
    facts.lastService = std::nullopt;
    const auto diagnosis = diagnose(facts);
    EXPECT_FALSE(diagnosis.needsUser());
    for (const auto* key :
        { "updater", "crashReports", "loginItem", "notifications", "nativeMessaging.confined", "service.background" }) {
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
    const DaemonFailure refused = DaemonError { DaemonError::Kind::connectionFailed, {} };
    const Situation situations[] {
        { "application.location", "~/Downloads/Brevanta.app (elsewhere)", "Move Brevanta to Applications",
            [](DiagnosisFacts& facts) { facts.location.resolvedBundleURL = "~/Downloads/Brevanta.app"; } },
        { "service.health", "not installed", "\"⚠ Install Blocking Service…\"",
            serviceIs(DaemonHealth::NotInstalled {}, DiagnosisFacts::NoSocket {}) },
        { "service.health", "does not run", "\"⚠ Restart Blocking Service…\"",
            serviceIs(DaemonHealth::NotRunning {}, refused) },
        { "service.health", "turned off", "\"⚠ Blocking Service Turned Off in System Settings…\"",
            serviceIs(DaemonHealth::TurnedOffInSettings {}, DiagnosisFacts::NoSocket {}) },
        { "service.health", "does not answer as it should", "\"⚠ Restart Blocking Service…\"",
            serviceIs(DaemonHealth::Unreachable {}, DiagnosisFacts::NoAnswerInTime {}) },
        { "service.health", "older than the one in the application", "Blocking Service",
            serviceIs(DaemonHealth::Running { "1.2.2", DaemonUpgradePolicy::Upgrade { "1.2.2", "1.2.3" } },
                DiagnosisFacts::Answer { .version = "1.2.2", .isSignedIn = true }) },
        { "account", "no valid sign-in", "sign in",
            [](DiagnosisFacts& facts) { facts.contact = DiagnosisFacts::Answer { .version = "1.2.3" }; } },
        { "filter.state", "awaitingApproval", "\"⚠ Approve Content Filter in System Settings…\"",
            filterIs(FilterStatus::awaitingApproval,
                { "⚠ Approve Content Filter in System Settings…", ComponentAction::openFilterApproval }) },
        { "filter.state", "off", "Turn on Brevanta's content filter",
            filterIs(FilterStatus::off, { "⚠ Content Filter: Off", ComponentAction::none }) },
        { "filter.state", "cantCheck", "Ask again",
            filterIs(FilterStatus::cantCheck, { "Content Filter: Can't check", ComponentAction::none }) },
        { "filter.sharedState", "no folder", "Install Brevanta anew",
            [](DiagnosisFacts& facts) { facts.sharedState.reset(); } },
        { "filter.sharedState", "cannot be written", "write in the folder", sharedStateIs(Condition::notWritable) },
        { "filter.sharedState", "missing", "disk is full", sharedStateIs(Condition::missing) },
        { "nativeMessaging.launcher", "missing", "open it",
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
    facts.filterVersion = "1\xff";
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
}

}
