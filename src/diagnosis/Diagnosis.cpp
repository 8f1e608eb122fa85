#include "diagnosis/Diagnosis.h"

#include "diagnosis/Findings.h"

#include <algorithm>

namespace brevanta {

namespace {

Finding lastSeen(Subject subject, std::optional<ConclusiveState> state)
{
    const auto name = state ? stateName(*state) : "never";
    return good(std::move(subject), name, std::string(name));
}

}

bool Diagnosis::needsUser() const
{
    return std::ranges::any_of(
        findings, [](const Finding& finding) { return finding.verdict == FindingVerdict::needsUser; });
}

bool Diagnosis::allIsWell() const
{
    return std::ranges::all_of(
        findings, [](const Finding& finding) { return finding.verdict == FindingVerdict::good; });
}

std::optional<std::string> Diagnosis::remedy() const
{
    const auto first = std::ranges::find(findings, FindingVerdict::needsUser, &Finding::verdict);
    return first == findings.end() ? std::nullopt : std::optional(first->remedy);
}

// In the order in which troubles are to be put right: what hinders the most comes first.
Diagnosis diagnose(const DiagnosisFacts& facts)
{
    std::vector<Finding> findings { good({ "application.version", "Application" }, "", facts.version),
        locationFinding(facts), systemFinding(facts), storageFinding(facts), preferencesFinding(facts),
        good({ "service.bundledVersion", "Bundled service" }, "", facts.bundledServiceVersion), removalFinding(facts),
        serviceFinding(facts), runningVersionFinding(facts), backgroundItemFinding(facts), socketFinding(facts),
        accountFinding(facts) };
    addFilter(findings, facts);
    findings.push_back(clientFinding(facts));
    findings.push_back(sharedStateFinding(facts));
    addNativeMessaging(findings, facts);
    findings.push_back(soundsFinding(facts));
    findings.push_back(notificationsFinding(facts));
    findings.push_back(updatesFinding(facts));
    findings.push_back(facts.reportsCrashes
            ? good({ "crashReports", "Crash reports" }, "sent", "are sent")
            : notice({ "crashReports", "Crash reports" }, "notSent", "this build sends none"));
    findings.push_back(loginItemFinding(facts));
    findings.push_back(good({ "log", "Log" }, "", facts.log));
    findings.push_back(lastSeen({ "lastConclusive.blockingService", "Service last seen" }, facts.lastService));
    findings.push_back(lastSeen({ "lastConclusive.contentFilter", "Filter last seen" }, facts.lastFilter));
    return { std::move(findings) };
}

}
