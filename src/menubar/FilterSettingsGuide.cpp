#include "menubar/FilterSettingsGuide.h"

#include "platform/SystemLog.h"
#include "platform/Workspace.h"
#include "track/AppAlertPresenter.h"

namespace brevanta {

static constexpr auto approvalAlert = "filterApproval";
static constexpr auto filterPathAlert = "settingsOpenFailed";
static constexpr auto loginItemsPathAlert = "loginItemsOpenFailed";

FilterSettingsGuide::FilterSettingsGuide(
    AppAlertPresenter& alerts, Workspace& workspace, SystemLog& log, SystemVersion systemVersion)
    : m_alerts(alerts)
    , m_workspace(workspace)
    , m_log(log)
    , m_panes(filterApprovalPanes(systemVersion))
    , m_loginItemsManualPath(loginItemsManualPath(systemVersion))
{
}

void FilterSettingsGuide::openFilterApprovalPane()
{
    m_workspace.openUrl(m_panes.first, m_life.guard([this](OpenOutcome outcome) {
        if (outcome == OpenOutcome::opened)
            return;
        m_log.log("[MenuBar] versioned System Settings pane did not open; trying the fallback pane");
        openFallbackPane();
    }));
}

void FilterSettingsGuide::openFallbackPane()
{
    m_workspace.openUrl(m_panes.fallback, m_life.guard([this](OpenOutcome outcome) {
        if (outcome == OpenOutcome::opened)
            return;
        m_log.log("[MenuBar] System Settings did not open at all; showing the manual path");
        showManualPath(filterPathAlert, m_panes.manualPath);
    }));
}

void FilterSettingsGuide::showManualPath(const char* identifier, const std::string& manualPath)
{
    m_alerts.present({ .identifier = identifier,
                         .style = AlertStyle::warning,
                         .message = "System Settings did not open",
                         .informativeText = manualPath,
                         .buttons = { "OK" } },
        [](AlertResponse) { });
}

void FilterSettingsGuide::openLoginItemsSettings()
{
    m_workspace.openUrl(std::string(loginItemsPane), m_life.guard([this](OpenOutcome outcome) {
        if (outcome == OpenOutcome::opened)
            return;
        m_log.log("[MenuBar] the Login Items pane did not open");
        showManualPath(loginItemsPathAlert, m_loginItemsManualPath);
    }));
}

void FilterSettingsGuide::componentsChanged(FilterStatus filter, const DaemonHealth::State& service)
{
    follow(m_filterMatter, settingsMatterOf(filter), filterPathAlert);
    follow(m_serviceMatter, settingsMatterOf(service), loginItemsPathAlert);
}

void FilterSettingsGuide::follow(SettingsMatter& known, SettingsMatter now, const char* identifier)
{
    if (hasSettled(known, now))
        m_alerts.withdraw(identifier);
    if (now != SettingsMatter::unknown)
        known = now;
}

void FilterSettingsGuide::showApprovalAlert()
{
    if (m_approvalAlertShown)
        return;
    m_approvalAlertShown = true;
    m_alerts.present(
        { .identifier = approvalAlert,
            .style = AlertStyle::informational,
            .message = "Approve the Brevanta content filter",
            .informativeText = "macOS needs your approval before Brevanta can filter network traffic. In System "
                               "Settings, open General, then Login Items & Extensions, then Network Extensions, and "
                               "turn on Brevanta Filter. Allow the filter prompt that follows.",
            .buttons = { "Open System Settings", "Later" } },
        m_life.guard([this](AlertResponse response) {
            if (response.end == AlertEnd::button && response.button == 0)
                openFilterApprovalPane();
        }));
}

void FilterSettingsGuide::dismissApprovalAlert() { m_alerts.withdraw(approvalAlert); }

}
