#include "app/AppLocationGate.h"

#include "platform/AlertPanel.h"
#include "platform/ApplicationLifecycle.h"
#include "platform/MainLoop.h"
#include "platform/SystemLog.h"
#include "platform/Workspace.h"

#include <string>

namespace brevanta {

namespace {

constexpr std::size_t showApplications = 0; // Its place among the buttons.

// A file browser that does not start must not keep the application.
constexpr double secondsToOpen = 5;

Alert alertFor(AppLocationPolicy::IneligibleReason reason)
{
    return { .identifier = "app-location",
        .style = AlertStyle::informational,
        .message = "Install Brevanta in Applications",
        .informativeText = std::string(AppLocationPolicy::message(reason)),
        .buttons = { "Show Applications", "Quit" } };
}

}

AppLocationGate::AppLocationGate(Dependencies dependencies)
    : m_dependencies(dependencies)
{
}

AppLocationGate::~AppLocationGate() = default;

LaunchPermission AppLocationGate::check(const AppLocationPolicy::Context& context)
{
    const auto reason = AppLocationPolicy::classify(context);
    if (!reason)
        return LaunchPermission::granted;
    m_dependencies.log.log("[AppLocation] ineligible (" + std::string(AppLocationPolicy::name(*reason))
        + "): " + context.resolvedBundleURL.string());
    m_dependencies.lifecycle.setActivationPolicy(ActivationPolicy::regular);
    m_dependencies.lifecycle.activate();
    m_dependencies.alerts.present(alertFor(*reason),
        m_life.guard([this, applications = context.resolvedSystemApplicationsURL](
                         const AlertResponse& response) { alertEnded(response, applications); }));
    return LaunchPermission::refused;
}

void AppLocationGate::alertEnded(const AlertResponse& response, const std::filesystem::path& applications)
{
    if (response.end != AlertEnd::button || response.button != showApplications)
        return terminate();
    m_limit = m_dependencies.mainLoop.startTimer(secondsToOpen, TimerRepeat::once, [this] { terminate(); });
    m_dependencies.workspace.openFolder(applications.string(), m_life.guard([this](OpenOutcome) {
        m_limit.reset();
        terminate();
    }));
}

void AppLocationGate::terminate() { m_dependencies.lifecycle.terminate(); }

}
