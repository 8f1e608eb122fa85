#include "diagnosis/Findings.h"

namespace brevanta {

namespace {

std::string_view whyNot(AppLocationPolicy::IneligibleReason reason)
{
    switch (reason) {
    case AppLocationPolicy::IneligibleReason::translocated:
        return "where macOS runs what was never moved since its download";
    case AppLocationPolicy::IneligibleReason::readOnlyVolume:
        return "on a disk that is read-only";
    case AppLocationPolicy::IneligibleReason::userApplications:
        return "in your personal Applications folder";
    case AppLocationPolicy::IneligibleReason::nestedBundle:
        return "in a folder of the Applications folder";
    case AppLocationPolicy::IneligibleReason::elsewhere:
        break;
    }
    return "outside of the Applications folder";
}

}

Finding locationFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "application.location", "Location" };
    const auto path = facts.location.resolvedBundleURL.string();
    if (const auto reason = AppLocationPolicy::classify(facts.location))
        return needsUser(subject, AppLocationPolicy::name(*reason), path + ", " + std::string(whyNot(*reason)),
            std::string(AppLocationPolicy::message(*reason)));
    return good(subject, "eligible", path);
}

Finding systemFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "system.version", "System" };
    if (facts.system.isSupported)
        return good(subject, "supported", facts.system.text);
    return needsUser(subject, "tooOld", facts.system.text + ", older than this application needs",
        unlessAdministrators(facts, "update this Mac to macOS " + facts.minimumSystem + " or later."));
}

Finding storageFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "storage", "Disk" };
    const auto said = [&](const FolderFacts& folder) -> std::optional<Finding> {
        const auto place = folder.place.string();
        if (folder.obstacle == WriteObstacle::readOnlyVolume)
            return needsUser(subject, "readOnly", "read-only: nothing can be stored in " + place,
                "Make the disk writable again: restart this Mac, and check the disk with Disk Utility if that does not "
                "help.");
        if (folder.obstacle == WriteObstacle::fullVolume)
            return needsUser(subject, "full", "full: nothing more can be stored in " + place,
                "Make room on the disk, by emptying the Trash for instance.");
        return std::nullopt;
    };
    if (facts.sharedState) {
        if (auto finding = said(facts.sharedState->folder))
            return *std::move(finding);
    }
    if (auto finding = said(facts.preferences.folder))
        return *std::move(finding);
    return good(subject, "writable", "has room");
}

Finding preferencesFinding(const DiagnosisFacts& facts)
{
    using Condition = DiagnosisFacts::Preferences::Condition;
    const Subject subject { "preferences", "Preferences" };
    const auto& [file, condition, folder] = facts.preferences;
    const auto path = file.string();
    if (condition == Condition::unreadable)
        return needsUser(subject, "unreadable", "may not be read: " + path,
            asAdministrator(facts, "let your user read and write the file " + path + "."));
    if (condition == Condition::damaged)
        return needsUser(subject, "damaged", "damaged: " + path,
            (facts.clientRuns == false ? "Move " : "Quit Brevanta, move ") + path
                + " to another place, and open Brevanta: it begins a new one.");
    if (const auto obstacle = obstacleWords(facts, folder, file.parent_path()); !obstacle.reason.empty()) {
        auto text = "cannot be stored, since " + obstacle.reason;
        return obstacle.remedy.empty() ? notice(subject, obstacle.state, std::move(text))
                                       : needsUser(subject, obstacle.state, std::move(text), obstacle.remedy);
    }
    if (condition == Condition::none)
        return good(subject, "none", "none stored yet: " + path);
    return good(subject, "there", path);
}

Finding clientFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "client.running", "Brevanta" };
    if (!facts.clientRuns)
        return notice(subject, "unknown", "cannot be seen from here whether it runs");
    if (*facts.clientRuns)
        return good(subject, "running", "runs");
    return needsUser(subject, "notRunning",
        "does not run: there is no menu, no notice, and the filter hears nothing new", "Open Brevanta.");
}

// Whether to be told is the user's choice.
Finding notificationsFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "notifications", "Notifications" };
    if (!facts.notifications)
        return notice(subject, "unknown", "the system did not say whether they are allowed");
    switch (*facts.notifications) {
    case NotificationAuthorization::authorized:
        return good(subject, "authorized", "allowed");
    case NotificationAuthorization::provisional:
        return good(subject, "provisional", "allowed");
    case NotificationAuthorization::notDetermined:
        return notice(subject, "notDetermined", "not decided: macOS has not asked yet, or its question is still open");
    case NotificationAuthorization::denied:
        break;
    }
    return notice(
        subject, "denied", "not allowed: no notice is shown until you allow them in System Settings, Notifications");
}

Finding updatesFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "updater", "Updates" };
    const auto& updates = facts.updates;
    if (updates.isUsable)
        return good(subject, "usable", "from " + updates.feed.value_or(""));
    if (updates.feed)
        return notice(subject, "unusable", "the feed or the key of this build cannot be used");
    return notice(subject, "notConfigured", "this build is not configured for them");
}

Finding loginItemFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "loginItem", "Opens at login" };
    if (!facts.loginItem)
        return notice(subject, "unknown", "the system did not say");
    switch (*facts.loginItem) {
    case LoginItemStatus::enabled:
        return good(subject, "enabled", "yes");
    case LoginItemStatus::requiresApproval:
        return notice(subject, "requiresApproval", "no: switched off in System Settings");
    case LoginItemStatus::notRegistered:
    case LoginItemStatus::notFound:
        break;
    }
    return notice(subject, "notRegistered", "not yet: Brevanta registers at its next start");
}

}
