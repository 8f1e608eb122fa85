#include "diagnosis/Diagnosis.h"

#include "base/Text.h"
#include "filter/ComponentLabels.h"
#include "install/DaemonUpgradePolicy.h"

#include <algorithm>

namespace brevanta {

namespace {

Finding good(std::string key, std::string title, std::string text)
{
    return { .key = std::move(key), .title = std::move(title), .text = std::move(text), .remedy = {} };
}

Finding notice(std::string key, std::string title, std::string text)
{
    auto finding = good(std::move(key), std::move(title), std::move(text));
    finding.verdict = FindingVerdict::notice;
    return finding;
}

Finding needsUser(std::string key, std::string title, std::string text, std::string remedy)
{
    auto finding = good(std::move(key), std::move(title), std::move(text));
    finding.verdict = FindingVerdict::needsUser;
    finding.remedy = std::move(remedy);
    return finding;
}

std::string chooseInMenu(const std::string& item) { return "Open Brevanta and choose \"" + item + "\" in its menu."; }

constexpr std::string_view openOnce = "Quit Brevanta if it runs, and open it: it puts this right at its start.";

Finding location(const DiagnosisFacts& facts)
{
    const auto path = facts.location.resolvedBundleURL.string();
    if (const auto reason = AppLocationPolicy::classify(facts.location))
        return needsUser("application.location", "Location",
            path + " (" + std::string(AppLocationPolicy::name(*reason)) + ")",
            std::string(AppLocationPolicy::message(*reason)));
    return good("application.location", "Location", path);
}

struct ContactText {
    const std::string& socket;

    std::string operator()(const DiagnosisFacts::Answer&) const { return socket + " answers"; }
    std::string operator()(const DiagnosisFacts::NoSocket&) const { return "there is no socket at " + socket; }
    std::string operator()(const DiagnosisFacts::NoAnswerInTime&) const { return socket + " gave no answer in time"; }
    std::string operator()(const DaemonFailure& failure) const
    {
        const auto* const error = std::get_if<DaemonError>(&failure);
        if (error && error->kind == DaemonError::Kind::connectionFailed)
            return "nothing accepts connections at " + socket;
        return socket + " gave no usable answer: " + describe(failure);
    }
};

// That the service does not answer is said here, what to do about it by its health.
Finding socket(const DiagnosisFacts& facts)
{
    auto text = std::visit(ContactText { facts.socketPath }, facts.contact);
    const bool answers = std::holds_alternative<DiagnosisFacts::Answer>(facts.contact);
    return (answers ? good : notice)("service.socket", "Its socket", std::move(text));
}

Finding runningVersion(const DiagnosisFacts& facts)
{
    const auto* const answer = std::get_if<DiagnosisFacts::Answer>(&facts.contact);
    if (!answer)
        return notice("service.runningVersion", "Its version", "unknown");
    return good("service.runningVersion", "Its version", answer->version.value_or("not told"));
}

struct ServiceText {
    std::string operator()(const DaemonHealth::Running& running) const
    {
        if (std::holds_alternative<DaemonUpgradePolicy::Upgrade>(running.upgrade))
            return "runs, older than the one in the application";
        if (std::holds_alternative<DaemonUpgradePolicy::NewerInstalled>(running.upgrade))
            return "runs, newer than the one in the application";
        return "runs";
    }
    std::string operator()(const DaemonHealth::Checking&) const { return "not known yet"; }
    std::string operator()(const DaemonHealth::NotInstalled&) const { return "not installed"; }
    std::string operator()(const DaemonHealth::NotRunning&) const { return "installed, but does not run"; }
    std::string operator()(const DaemonHealth::TurnedOffInSettings&) const { return "turned off in System Settings"; }
    std::string operator()(const DaemonHealth::Starting&) const { return "starts"; }
    std::string operator()(const DaemonHealth::Unreachable&) const { return "runs, but does not answer as it should"; }
};

Finding service(const DiagnosisFacts& facts)
{
    constexpr auto key = "service.health";
    constexpr auto title = "Blocking service";
    auto text = std::visit(ServiceText {}, facts.service);
    const auto line = serviceLine(facts.service, InstallProgress::idle);
    if (line.action != ComponentAction::none)
        return needsUser(key, title, std::move(text), chooseInMenu(line.title));
    if (std::holds_alternative<DaemonHealth::Running>(facts.service))
        return good(key, title, std::move(text));
    return needsUser(
        key, title, std::move(text), "Ask again in half a minute; restart this Mac if the answer is the same.");
}

// What to do about one that is switched off is said by the service's health.
Finding backgroundItem(const DiagnosisFacts& facts)
{
    constexpr auto key = "service.background";
    constexpr auto title = "In the background";
    switch (facts.backgroundItem) {
    case BackgroundItem::allowed:
        return good(key, title, "allowed");
    case BackgroundItem::requiresApproval:
        return notice(key, title, "switched off in System Settings");
    case BackgroundItem::unknown:
        break;
    }
    return notice(key, title, "not known");
}

Finding account(const DiagnosisFacts& facts)
{
    const auto* const answer = std::get_if<DiagnosisFacts::Answer>(&facts.contact);
    if (!answer)
        return notice("account", "Account", "unknown, since the service does not answer");
    if (!answer->isSignedIn)
        return needsUser("account", "Account", "the service has no valid sign-in", "Open Brevanta and sign in.");
    return good("account", "Account", "signed in");
}

Finding filter(const DiagnosisFacts& facts)
{
    constexpr auto key = "filter.state";
    constexpr auto title = "Content filter";
    std::string text(reportName(facts.filter));
    if (facts.filterVersion)
        text += ", version " + *facts.filterVersion;
    if (facts.filterLine.action != ComponentAction::none)
        return needsUser(key, title, std::move(text), chooseInMenu(facts.filterLine.title));
    switch (facts.filter) {
    case FilterStatus::on:
        return good(key, title, std::move(text));
    case FilterStatus::off:
        return needsUser(
            key, title, std::move(text), "Turn on Brevanta's content filter in System Settings, under Network.");
    case FilterStatus::checking:
    case FilterStatus::cantCheck:
    case FilterStatus::awaitingApproval:
        break;
    }
    return needsUser(
        key, title, std::move(text), "Ask again in half a minute; restart this Mac if the answer is the same.");
}

Finding placed(std::string key, std::string title, const std::string& path, FilePlacement placement)
{
    switch (placement) {
    case FilePlacement::inPlace:
        return good(std::move(key), std::move(title), path);
    case FilePlacement::missing:
        return needsUser(std::move(key), std::move(title), "missing: " + path, std::string(openOnce));
    case FilePlacement::different:
        break;
    }
    return needsUser(std::move(key), std::move(title), "not as this version writes it: " + path, std::string(openOnce));
}

// The client writes it with the first status, and says nothing when it cannot.
Finding sharedState(const DiagnosisFacts& facts)
{
    constexpr auto key = "filter.sharedState";
    constexpr auto title = "What it reads";
    if (!facts.sharedState)
        return needsUser(key, title, "the system has no folder for it",
            "Install Brevanta anew: its bundle is damaged, or not signed.");
    using Condition = DiagnosisFacts::SharedState::Condition;
    const auto& [file, condition] = *facts.sharedState;
    if (condition == Condition::notWritable)
        return needsUser(key, title, "cannot be written: " + file.string(),
            "Allow your user to write in the folder " + file.parent_path().string() + ".");
    if (condition == Condition::there)
        return good(key, title, file.string());
    if (!std::holds_alternative<DiagnosisFacts::Answer>(facts.contact))
        return notice(key, title, "not there yet: " + file.string());
    return needsUser(key, title, "missing: " + file.string(),
        "Open Brevanta, which writes this file; if it runs, see whether the disk is full.");
}

std::string keyOf(std::string_view name)
{
    auto key = lowerCased(name);
    std::ranges::replace(key, ' ', '-');
    return key;
}

void addNativeMessaging(std::vector<Finding>& findings, const DiagnosisFacts& facts)
{
    const auto& state = facts.nativeMessaging;
    findings.push_back(
        placed("nativeMessaging.launcher", "Browser launcher", state.launcherFile.string(), state.launcher));
    for (const auto& manifest : state.manifests) {
        const auto name = std::string(manifest.browser);
        auto key = "nativeMessaging.manifest." + keyOf(name);
        if (manifest.placement)
            findings.push_back(placed(std::move(key), name + " manifest", manifest.file.string(), *manifest.placement));
        else
            findings.push_back(good(std::move(key), name + " manifest", "none: this browser has not been used"));
    }
    if (!facts.confinedBrowsers.empty())
        findings.push_back(notice("nativeMessaging.confined", "Browsers out of reach",
            commaSeparated(facts.confinedBrowsers) + ": they run in a sandbox of their own"));
}

Finding sounds(const DiagnosisFacts& facts)
{
    std::vector<std::string> wrong;
    bool shipped = true;
    for (const auto& sound : facts.sounds) {
        if (sound.placement != FilePlacement::inPlace)
            wrong.push_back(sound.name);
        shipped &= sound.isBundled;
    }
    if (!shipped)
        return needsUser("sounds", "Notification sounds", "the application lacks " + commaSeparated(wrong),
            "Install Brevanta anew: its bundle is damaged.");
    if (!wrong.empty())
        return needsUser(
            "sounds", "Notification sounds", "not in place: " + commaSeparated(wrong), std::string(openOnce));
    return good("sounds", "Notification sounds", "in place");
}

// Whether to be told is the user's choice.
Finding notifications(const DiagnosisFacts& facts)
{
    constexpr auto key = "notifications";
    constexpr auto title = "Notifications";
    if (!facts.notifications)
        return notice(key, title, "unknown");
    switch (*facts.notifications) {
    case NotificationAuthorization::authorized:
    case NotificationAuthorization::provisional:
        return good(key, title, "allowed");
    case NotificationAuthorization::notDetermined:
        return notice(key, title, "not decided: macOS has not asked yet, or its question is still open");
    case NotificationAuthorization::denied:
        break;
    }
    return notice(key, title, "not allowed: no notice is shown until they are turned on in System Settings");
}

Finding updates(const DiagnosisFacts& facts)
{
    const auto& updates = facts.updates;
    if (updates.isUsable)
        return good("updater", "Updates", "from " + updates.feed.value_or(""));
    return notice("updater", "Updates",
        updates.feed ? "the feed or the key of this build cannot be used" : "this build is not configured for them");
}

Finding loginItem(const DiagnosisFacts& facts)
{
    constexpr auto key = "loginItem";
    constexpr auto title = "Opens at login";
    if (!facts.loginItem)
        return notice(key, title, "unknown");
    switch (*facts.loginItem) {
    case LoginItemStatus::enabled:
        return good(key, title, "yes");
    case LoginItemStatus::requiresApproval:
        return notice(key, title, "no: switched off in System Settings");
    case LoginItemStatus::notRegistered:
    case LoginItemStatus::notFound:
        break;
    }
    return notice(key, title, "not yet: Brevanta registers at its next start");
}

}

bool Diagnosis::needsUser() const
{
    return std::ranges::any_of(
        findings, [](const Finding& finding) { return finding.verdict == FindingVerdict::needsUser; });
}

std::optional<std::string> Diagnosis::remedy() const
{
    const auto first = std::ranges::find(findings, FindingVerdict::needsUser, &Finding::verdict);
    return first == findings.end() ? std::nullopt : std::optional(first->remedy);
}

Diagnosis diagnose(const DiagnosisFacts& facts)
{
    std::vector<Finding> findings { good("application.version", "Application", facts.version), location(facts),
        good("service.bundledVersion", "Bundled service", facts.bundledServiceVersion), service(facts),
        runningVersion(facts), backgroundItem(facts), socket(facts), account(facts), filter(facts),
        sharedState(facts) };
    addNativeMessaging(findings, facts);
    findings.push_back(sounds(facts));
    findings.push_back(notifications(facts));
    findings.push_back(updates(facts));
    findings.push_back(facts.reportsCrashes ? good("crashReports", "Crash reports", "are sent")
                                            : notice("crashReports", "Crash reports", "this build sends none"));
    findings.push_back(loginItem(facts));
    const auto last = [](std::optional<ConclusiveState> state) {
        return state ? std::string(stateName(*state)) : std::string("never");
    };
    findings.push_back(good("lastConclusive.blockingService", "Service last seen", last(facts.lastService)));
    findings.push_back(good("lastConclusive.contentFilter", "Filter last seen", last(facts.lastFilter)));
    return { std::move(findings) };
}

}
