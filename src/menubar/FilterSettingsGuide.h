#pragma once

#include "base/LifeToken.h"
#include "filter/SystemSettings.h"
#include "menubar/SettingsMatter.h"

#include <string>

namespace brevanta {

class AppAlertPresenter;
class SystemLog;
class Workspace;

// Leads the user to the system's settings for the two protective components. Main thread only.
class FilterSettingsGuide {
public:
    FilterSettingsGuide(AppAlertPresenter& alerts, Workspace& workspace, SystemLog& log, SystemVersion systemVersion);

    // Opens the pane in which the filter is allowed; when none opens, an alert says where it is.
    void openFilterApprovalPane();

    // The same for the pane in which the service is allowed to run.
    void openLoginItemsSettings();

    // What is known of the two components may have changed: an alert that says where a pane is goes once there is
    // nothing to do there any more.
    void componentsChanged(FilterStatus filter, const DaemonHealth::State& service);

    // Explains once per process what the user has to allow.
    void showApprovalAlert();

    // There is nothing to approve any more.
    void dismissApprovalAlert();

private:
    void openFallbackPane();
    void showManualPath(const char* identifier, const std::string& manualPath);
    void follow(SettingsMatter& known, SettingsMatter now, const char* identifier);

    AppAlertPresenter& m_alerts;
    Workspace& m_workspace;
    SystemLog& m_log;
    FilterApprovalPanes m_panes;
    std::string m_loginItemsManualPath;
    SettingsMatter m_filterMatter { SettingsMatter::unknown }; // The last that was known.
    SettingsMatter m_serviceMatter { SettingsMatter::unknown };
    bool m_approvalAlertShown { false };
    LifeToken m_life;
};

}
