#include "menubar/ContentFilterPass.h"

#include "platform/NotificationCenter.h"
#include "platform/SystemLog.h"
#include "setup/ComponentMonitor.h"

#include <string>
#include <utility>

namespace brevanta {

ContentFilterPass::ContentFilterPass(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
    m_dependencies.monitor.filterManager().setReadHandler([this] { answersArrived(); });
}

ContentFilterPass::~ContentFilterPass() { m_dependencies.monitor.filterManager().setReadHandler({}); }

void ContentFilterPass::run() { m_dependencies.monitor.filterManager().refresh(); }

void ContentFilterPass::answersArrived()
{
    withdrawApprovalNotice();
    applyLaunchPolicy();
    m_dependencies.onRead();
}

void ContentFilterPass::withdrawApprovalNotice()
{
    const bool awaits = m_dependencies.monitor.filterManager().isAwaitingUserApproval();
    if (!awaits && m_noticeMayBeShown)
        m_dependencies.notifications.removeDelivered({ "filterApproval" });
    m_noticeMayBeShown = awaits;
}

void ContentFilterPass::applyLaunchPolicy()
{
    auto& manager = m_dependencies.monitor.filterManager();
    using LaunchFilterActivationPolicy::Decision;
    using LaunchFilterActivationPolicy::LaunchAttempt;
    const bool attempted = m_activateAttempted || manager.wasActivationSubmitted();
    const auto decision
        = m_dependencies.monitor.launchFilterDecision(attempted ? LaunchAttempt::made : LaunchAttempt::notYet);
    if (decision == m_lastDecision)
        return;
    m_lastDecision = decision;
    m_dependencies.log.log("[MenuBar] launch filter policy: " + std::string(describe(decision)));
    switch (decision) {
    case Decision::activate:
        return activate();
    case Decision::nothingToSubmit:
        manager.launchPolicySubmittedNothing();
        return settle({ .kind = LaunchActivationOutcome::Kind::skipped });
    case Decision::nothingToDo:
        // After our own request this is decided too, but that one settles by its end.
        if (!m_activateAttempted)
            settle({ .kind = LaunchActivationOutcome::Kind::skipped });
        return;
    case Decision::undecided:
        return;
    }
}

void ContentFilterPass::activate()
{
    m_activateAttempted = true;
    m_dependencies.monitor.filterManager().activate(m_life.guard([this](const FilterRequestEnd& end) {
        m_dependencies.log.log("[MenuBar] launch upgrade request ended: " + describe(end));
        if (end.outcome.kind == LaunchActivationOutcome::Kind::needsUserApproval)
            m_dependencies.log.log("[MenuBar] launch upgrade parked on approval: menu relabelled, no guide");
        settle(end.outcome);
        m_dependencies.onRead();
    }));
}

void ContentFilterPass::settle(const LaunchActivationOutcome& outcome)
{
    if (!std::exchange(m_isSettled, true))
        m_dependencies.onSettled(outcome);
}

}
