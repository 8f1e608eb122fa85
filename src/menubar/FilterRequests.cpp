#include "menubar/FilterRequests.h"

#include "crash/ReportScrubber.h"
#include "filter/FilterManager.h"
#include "menubar/FilterSettingsGuide.h"
#include "platform/SystemLog.h"
#include "track/AppAlertPresenter.h"

#include <utility>

namespace brevanta {

namespace {

using Kind = LaunchActivationOutcome::Kind;

}

FilterRequests::FilterRequests(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
}

void FilterRequests::activate(std::function<void()> completion)
{
    m_callers.push_back(std::move(completion));
    if (!std::exchange(m_isActivating, true))
        m_dependencies.manager.activate(m_life.guard([this](const FilterRequestEnd& end) { activationTold(end); }));
    else if (m_dependencies.manager.isAwaitingUserApproval())
        notifyCallers();
}

void FilterRequests::remove()
{
    m_dependencies.manager.remove(m_life.guard([this](const FilterRequestEnd& end) {
        tellOf(end, "filterRemovalFailed", "The content filter could not be removed");
        m_dependencies.changed();
    }));
}

void FilterRequests::activationTold(const FilterRequestEnd& end)
{
    if (end.outcome.kind == Kind::needsUserApproval) {
        m_dependencies.guide.showApprovalAlert();
        return notifyCallers();
    }
    m_dependencies.guide.dismissApprovalAlert();
    switch (end.kept) {
    case FilterRequestEnd::Kept::extensionOff:
        m_dependencies.log.log("[MenuBar] tap request cancelled by our replace check; extension off: opening the pane");
        m_dependencies.guide.openFilterApprovalPane();
        break;
    case FilterRequestEnd::Kept::extensionEnabled:
        m_dependencies.log.log("[MenuBar] tap request cancelled by our replace check; extension enabled: configuring");
        return configure();
    case FilterRequestEnd::Kept::no:
        if (end.outcome.kind == Kind::completed)
            return configure();
        break;
    }
    activationEnded(end);
}

void FilterRequests::configure()
{
    m_dependencies.manager.configure(m_life.guard([this](const FilterRequestEnd& end) { activationEnded(end); }));
}

void FilterRequests::activationEnded(const FilterRequestEnd& end)
{
    tellOf(end, "filterActivationFailed", "The content filter could not be turned on");
    m_isActivating = false;
    notifyCallers();
}

void FilterRequests::notifyCallers()
{
    m_dependencies.changed();
    for (const auto& completion : std::exchange(m_callers, {}))
        completion();
}

void FilterRequests::tellOf(const FilterRequestEnd& end, const char* failureIdentifier, const char* failureMessage)
{
    const auto tell = [this](Alert alert) {
        alert.buttons = { "OK" };
        m_dependencies.alerts.present(alert, [](AlertResponse) { });
    };
    if (end.outcome.kind == Kind::failed)
        tell({ .identifier = failureIdentifier,
            .style = AlertStyle::warning,
            .message = failureMessage,
            .informativeText = scrubReport(failureText(end)),
            .buttons = {} });
    else if (end.outcome.kind == Kind::willCompleteAfterReboot)
        tell({ .identifier = "filterNeedsRestart",
            .style = AlertStyle::informational,
            .message = "Restart this Mac",
            .informativeText = "macOS finishes the change to Brevanta's content filter when this Mac restarts. "
                               "Brevanta's menu then says whether anything is left to do.",
            .buttons = {} });
}

}
