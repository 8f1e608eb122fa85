#include "diagnosis/Findings.h"

#include "filter/ComponentLabels.h"
#include "install/DaemonUpgradePolicy.h"

namespace brevanta {

namespace {

using Facts = DiagnosisFacts;

struct Words {
    std::string_view state;
    std::string text;
};

struct FailureWords {
    std::string operator()(const DaemonError& error) const
    {
        switch (error.kind) {
        case DaemonError::Kind::rejected:
            return "it refused: " + error.reason;
        case DaemonError::Kind::sendFailed:
            return "it did not take the question";
        case DaemonError::Kind::invalidResponse:
            return "it is no object of JSON";
        case DaemonError::Kind::connectionFailed:
            break;
        }
        return "no connection";
    }
    std::string operator()(const JsonSerializationError&) const { return "the question could not be asked"; }
    std::string operator()(const JsonParseError&) const { return "it is empty, or not JSON"; }
    std::string operator()(const StatusDecodingError& error) const
    {
        return "\"" + error.key
            + (error.kind == StatusDecodingError::Kind::missing ? "\" is missing" : "\" is of the wrong kind");
    }
};

struct ContactWords {
    const std::string& socket;

    Words operator()(const Facts::Answer&) const { return { "answers", socket + " answers" }; }
    Words operator()(const Facts::NoSocket&) const { return { "noSocket", "there is no socket at " + socket }; }
    Words operator()(const Facts::NotASocket&) const
    {
        return { "notASocket", "what is at " + socket + " is no socket" };
    }
    Words operator()(const Facts::NotPermitted&) const
    {
        return { "notPermitted", socket + " may not be opened by your user" };
    }
    Words operator()(const Facts::NoAnswerInTime&) const
    {
        return { "noAnswerInTime", socket + " took the question and gave no whole answer in time" };
    }
    Words operator()(const DaemonFailure& failure) const
    {
        const auto* const error = std::get_if<DaemonError>(&failure);
        if (error && error->kind == DaemonError::Kind::connectionFailed)
            return { "refused", "nothing accepts connections at " + socket };
        return { "noUsableAnswer", socket + " gave no usable answer: " + std::visit(FailureWords {}, failure) };
    }
};

struct ServiceWords {
    bool isHidden; // Whether somebody listens cannot be seen.

    Words operator()(const DaemonHealth::Running& running) const
    {
        if (std::holds_alternative<DaemonUpgradePolicy::Upgrade>(running.upgrade))
            return { "outdated", "runs, older than the one in the application" };
        if (std::holds_alternative<DaemonUpgradePolicy::NewerInstalled>(running.upgrade))
            return { "newer", "runs, newer than the one in the application" };
        return { "running", "runs" };
    }
    Words operator()(const DaemonHealth::Checking&) const { return { "checking", "not known yet" }; }
    Words operator()(const DaemonHealth::NotInstalled&) const { return { "notInstalled", "not installed" }; }
    Words operator()(const DaemonHealth::NotRunning&) const
    {
        return { "notRunning",
            isHidden ? "installed, but your user may not talk to it" : "installed, but does not run" };
    }
    Words operator()(const DaemonHealth::TurnedOffInSettings&) const
    {
        return { "turnedOff", "turned off in System Settings" };
    }
    Words operator()(const DaemonHealth::Starting&) const { return { "starting", "starts" }; }
    Words operator()(const DaemonHealth::Unreachable&) const
    {
        return { "unreachable", "runs, but does not answer as it should" };
    }
};

bool startsService(ComponentAction action)
{
    return action == ComponentAction::installService || action == ComponentAction::restartService
        || action == ComponentAction::updateService;
}

std::string remedyFor(const Facts& facts, const ComponentLine& line)
{
    const auto choose = "open Brevanta and choose \"" + line.title + "\" in its menu";
    // A service that begins to listen takes the place of a socket, and of nothing else.
    if (std::holds_alternative<Facts::NotASocket>(facts.contact) && startsService(line.action))
        return asAdministrator(facts, "delete " + facts.socketPath + "; then " + choose + ".");
    return withPassword(facts, choose + ".");
}

}

Finding removalFinding(const DiagnosisFacts& facts)
{
    using Stage = Facts::Removal::Stage;
    const Subject subject { "removal", "Service removal" };
    const auto& removal = facts.removal;
    const auto marker = removal.marker.string();
    switch (removal.stage) {
    case Stage::none:
        break;
    case Stage::pending:
        return notice(subject, "pending", "asked for; it can be taken back in Brevanta's window");
    case Stage::finishing:
        return needsUser(subject, "finishing", "under way",
            "Wait for a minute and ask again; restart this Mac if the removal has not ended by then.");
    case Stage::overdue:
        return needsUser(subject, "overdue", "under way, and has not finished in time",
            (facts.clientRuns == true
                    ? "Choose \"Finish Removal\" in Brevanta's question; if there is none, quit Brevanta "
                      "and open it again."
                    : "Open Brevanta, and choose \"Finish Removal\" when it asks."));
    case Stage::atWork:
        return needsUser(subject, "atWork", "its files are being taken away",
            "Wait for two minutes until the removal has ended, and ask again.");
    case Stage::cutShort:
        if (removal.canGoOn)
            return needsUser(subject, "cutShort", "was cut short, and left " + marker,
                "Restart this Mac: the blocking service then finishes its removal.");
        return needsUser(subject, "cutShort", "was cut short, and left " + marker,
            asAdministrator(facts, "delete " + marker + ", which keeps the service from being installed."));
    }
    return good(subject, "none", "not asked for");
}

Finding serviceFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "service.health", "Blocking service" };
    const bool isHidden = std::holds_alternative<Facts::NotPermitted>(facts.contact);
    auto [state, text] = std::visit(ServiceWords { isHidden }, facts.service);
    const auto line = serviceLine(facts.service, InstallProgress::idle);
    if (line.action != ComponentAction::none)
        return unlessBeingRemoved(needsUser(subject, state, std::move(text), remedyFor(facts, line)), facts);
    if (std::holds_alternative<DaemonHealth::Running>(facts.service))
        return good(subject, state, std::move(text));
    return unlessBeingRemoved(needsUser(subject, state, std::move(text),
                                  "Ask again in half a minute; restart this Mac if the answer is the same."),
        facts);
}

Finding runningVersionFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "service.runningVersion", "Its version" };
    const auto* const answer = std::get_if<Facts::Answer>(&facts.contact);
    if (!answer)
        return notice(subject, "", "not known, since the service does not answer");
    return good(subject, "", answer->version.value_or("not told"));
}

// What to do about one that is switched off is said by the service's health.
Finding backgroundItemFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "service.background", "In the background" };
    switch (facts.backgroundItem) {
    case BackgroundItem::allowed:
        return good(subject, "allowed", "allowed");
    case BackgroundItem::requiresApproval:
        return notice(subject, "requiresApproval", "switched off in System Settings");
    case BackgroundItem::unknown:
        break;
    }
    if (std::holds_alternative<Facts::Answer>(facts.contact))
        return good(subject, "unknown", "allowed, since the service runs");
    if (std::holds_alternative<DaemonHealth::NotInstalled>(facts.service))
        return notice(subject, "unknown", "nothing that could run");
    return notice(subject, "unknown", "the system did not say whether it may run");
}

// That the service does not answer is said here, what to do about it by its health.
Finding socketFinding(const DiagnosisFacts& facts)
{
    auto [state, text] = std::visit(ContactWords { facts.socketPath }, facts.contact);
    const bool answers = std::holds_alternative<Facts::Answer>(facts.contact);
    return (answers ? good : notice)({ "service.socket", "Its socket" }, state, std::move(text));
}

Finding accountFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "account", "Account" };
    const auto* const answer = std::get_if<Facts::Answer>(&facts.contact);
    if (!answer)
        return notice(subject, "unknown", "not known, since the service does not answer");
    if (!answer->isSignedIn)
        return unlessBeingRemoved(
            needsUser(subject, "signedOut", "the service has no valid sign-in", "Open Brevanta and sign in."), facts);
    return good(subject, "signedIn", "signed in");
}

}
