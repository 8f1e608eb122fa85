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
    if (m_dependencies.isOnboarding()) {
        if (!m_isOnScreen)
            return;
        m_dependencies.log.log("[DaemonUpgrade] onboarding started: dismissing the update prompt until it ends");
        m_isOnScreen = false;
        m_isShown = false;
        return m_dependencies.alerts.withdraw(identifier);
    }
    const auto decision = m_dependencies.decide();
    const auto* const upgrade = decision ? std::get_if<DaemonUpgradePolicy::Upgrade>(&*decision) : nullptr;
    if (!upgrade || m_isShown)
        return;
    m_isShown = true;
    m_isOnScreen = true;
    m_dependencies.alerts.present({ .identifier = identifier,
                                      .style = AlertStyle::informational,
                                      .message = "Update the blocking service",
                                      .informativeText = DaemonUpgradePolicy::promptText(*upgrade),
                                      .buttons = { "Update Now", "Later" } },
        m_life.guard([this](AlertResponse response) {
            // An offer that was taken back may have been followed by another one.
            if (response.end == AlertEnd::withdrawn)
                return;
            m_isOnScreen = false;
            if (response.button == updateNowButton)
                updateChosen();
        }));
}

// Much may have happened since the offer was made.
void DaemonUpgradePrompt::updateChosen()
{
    const auto decision = m_dependencies.decide();
    if (!decision) {
        m_dependencies.log.log(
            "[MenuBar] Update Now: daemon state not decidable yet; the offer returns on the next poll");
        m_isShown = false;
        return;
    }
    if (!std::holds_alternative<DaemonUpgradePolicy::Upgrade>(*decision))
        return m_dependencies.log.log("[MenuBar] Update Now: nothing to update any more");
    m_dependencies.beginInstall();
}

}
