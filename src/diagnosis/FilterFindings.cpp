#include "diagnosis/Findings.h"

#include "filter/ExtensionRecords.h"

namespace brevanta {

namespace {

std::string_view wordsFor(FilterStatus status)
{
    switch (status) {
    case FilterStatus::checking:
        return "not known: the system has not answered";
    case FilterStatus::cantCheck:
        return "not known: the system cannot say";
    case FilterStatus::awaitingApproval:
        return "waits for your approval";
    case FilterStatus::off:
        return "off";
    case FilterStatus::on:
        break;
    }
    return "on";
}

Finding stateFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "filter.state", "Content filter" };
    const auto state = reportName(facts.filter);
    std::string text(wordsFor(facts.filter));
    // A new copy is not let in beside one that is on its way out.
    if (facts.filterLine.action == ComponentAction::activateFilter && facts.filterIsUninstalling)
        return needsUser(subject, state, text + ": the system takes it away with the next restart",
            "Restart this Mac; then open Brevanta and choose \"" + facts.filterLine.title + "\" in its menu.");
    if (facts.filterLine.action == ComponentAction::activateFilter)
        text = "not set up";
    if (facts.filterLine.action != ComponentAction::none)
        return needsUser(subject, state, std::move(text),
            withPassword(facts, "open Brevanta and choose \"" + facts.filterLine.title + "\" in its menu."));
    switch (facts.filter) {
    case FilterStatus::on:
        return good(subject, state, std::move(text));
    case FilterStatus::off:
        return needsUser(
            subject, state, std::move(text), "Turn on Brevanta's content filter in System Settings, under Network.");
    case FilterStatus::checking:
    case FilterStatus::cantCheck:
    case FilterStatus::awaitingApproval:
        break;
    }
    return needsUser(
        subject, state, std::move(text), "Ask again in half a minute; restart this Mac if the answer is the same.");
}

std::string versionOf(const ExtensionRecord& record)
{
    auto text = record.shortVersion.value_or("not told");
    if (record.buildVersion && record.buildVersion != record.shortVersion)
        text += " (" + *record.buildVersion + ")";
    return text;
}

Finding versionFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "filter.version", "Its version" };
    if (!facts.activeFilter)
        return notice(subject, "unknown", "none is at work");
    auto text = versionOf(*facts.activeFilter);
    if (!facts.bundledFilter)
        return notice(subject, "unknown", text + "; the application has none to compare it with");
    const auto order = compareVersions(*facts.activeFilter, *facts.bundledFilter);
    const auto bundled = "the one in the application, " + versionOf(*facts.bundledFilter);
    if (std::is_lt(order))
        return needsUser(subject, "older", text + ", older than " + bundled,
            openAnew(facts, "replaces the filter") + " Restart this Mac if the filter is as old after that.");
    if (std::is_gt(order))
        return notice(subject, "newer", text + ", newer than " + bundled);
    if (std::is_eq(order))
        return good(subject, "current", std::move(text));
    return notice(subject, "unknown", text + "; cannot be compared with " + bundled);
}

}

void addFilter(std::vector<Finding>& findings, const DiagnosisFacts& facts)
{
    findings.push_back(unlessBeingRemoved(stateFinding(facts), facts));
    findings.push_back(unlessBeingRemoved(versionFinding(facts), facts));
    if (facts.filterIsUninstalling)
        findings.push_back(notice({ "filter.restart", "A restart" }, "needed",
            "the system takes a copy of the filter away when this Mac is restarted"));
}

// The client writes it with the first status, and says nothing when it cannot.
Finding sharedStateFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "filter.sharedState", "What it reads" };
    if (!facts.sharedState)
        return needsUser(subject, "noFolder", "the system has no folder for it",
            unlessAdministrators(facts, "install Brevanta anew: its bundle is damaged, or not signed."));
    using Condition = DiagnosisFacts::SharedState::Condition;
    const auto& [file, condition, folder] = *facts.sharedState;
    const auto path = file.string();
    if (const auto obstacle = obstacleWords(facts, folder, file.parent_path()); !obstacle.reason.empty()) {
        auto text = "cannot be written, since " + obstacle.reason;
        return obstacle.remedy.empty() ? notice(subject, obstacle.state, std::move(text))
                                       : needsUser(subject, obstacle.state, std::move(text), obstacle.remedy);
    }
    if (condition == Condition::there)
        return good(subject, "there", path);
    if (condition == Condition::noFile)
        return needsUser(
            subject, "noFile", "is no file: " + path, "Move it to another place: Brevanta writes a file there.");
    const auto state = condition == Condition::missing ? "missing"
        : condition == Condition::unreadable           ? "unreadable"
                                                       : "outOfDate";
    const std::string text = condition == Condition::missing ? "missing: " + path
        : condition == Condition::unreadable                 ? "cannot be read: " + path
                                                             : "not what the service says now: " + path;
    // The client writes it when it runs and the service answers, which is said of those two.
    if (!std::holds_alternative<DiagnosisFacts::Answer>(facts.contact) || facts.clientRuns == false)
        return notice(subject, state, text + "; Brevanta writes it when the service answers");
    return unlessBeingRemoved(needsUser(subject, state, text, openAnew(facts, "writes this file")), facts);
}

}
