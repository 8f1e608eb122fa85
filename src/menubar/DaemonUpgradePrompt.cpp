#include "menubar/DaemonUpgradePrompt.h"

#include "platform/SystemLog.h"
#include "track/AppAlertPresenter.h"

#include <utility>
#include <variant>

namespace brevanta {

namespace {

constexpr auto identifier = "daemonUpgrade";
constexpr std::size_t updateNowButton = 0;

}

DaemonUpgradePrompt::DaemonUpgradePrompt(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
}

void DaemonUpgradePrompt::update()
{
    const auto state = m_dependencies.serviceState();
    const bool isOnboarding = m_dependencies.isOnboarding();
    if (m_offer && isOnboarding)
        m_dependencies.log.log("[DaemonUpgrade] onboarding started: dismissing the update prompt until it ends");
    if (m_offer && (isOnboarding || isOutdated(state)))
        takeBack();
    const auto* const running = std::get_if<DaemonHealth::Running>(&state);
    const auto* const upgrade = running ? std::get_if<Upgrade>(&running->upgrade) : nullptr;
    if (upgrade && !isOnboarding && !m_isShown)
        offer(*upgrade);
}

// A service that does not answer at the moment may still be the older one.
bool DaemonUpgradePrompt::isOutdated(const DaemonHealth::State& state) const
{
    if (const auto* const running = std::get_if<DaemonHealth::Running>(&state))
        return running->upgrade != DaemonUpgradePolicy::Decision(*m_offer);
    return std::holds_alternative<DaemonHealth::NotInstalled>(state)
        || std::holds_alternative<DaemonHealth::Starting>(state);
}

void DaemonUpgradePrompt::offer(const Upgrade& upgrade)
{
    m_isShown = true;
    m_offer = upgrade;
    m_dependencies.alerts.present({ .identifier = identifier,
                                      .style = AlertStyle::informational,
                                      .message = "Update the blocking service",
                                      .informativeText = DaemonUpgradePolicy::promptText(upgrade),
                                      .buttons = { "Update Now", "Later" } },
        m_life.guard([this](AlertResponse response) {
            // An offer that was taken back may have been followed by another one.
            if (response.end == AlertEnd::withdrawn)
                return;
            m_offer.reset();
            if (response.button == updateNowButton)
                updateChosen();
        }));
}

void DaemonUpgradePrompt::takeBack()
{
    m_offer.reset();
    m_isShown = false;
    m_dependencies.alerts.withdraw(identifier);
}

// Much may have happened since the offer was made.
void DaemonUpgradePrompt::updateChosen()
{
    const auto state = m_dependencies.serviceState();
    const auto* const running = std::get_if<DaemonHealth::Running>(&state);
    if (!running) {
        m_dependencies.log.log(
            "[MenuBar] Update Now: daemon state not decidable yet; the offer returns on the next poll");
        m_isShown = false;
        return;
    }
    if (!std::holds_alternative<Upgrade>(running->upgrade))
        return m_dependencies.log.log("[MenuBar] Update Now: nothing to update any more");
    m_dependencies.beginInstall();
}

}
