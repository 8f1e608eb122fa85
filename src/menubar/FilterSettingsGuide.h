#pragma once

#include "base/LifeToken.h"
#include "filter/SystemSettings.h"

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

    void openLoginItemsSettings();

    // Explains once per process what the user has to allow.
    void showApprovalAlert();

    // There is nothing to approve any more.
    void dismissApprovalAlert();

private:
    void openFallbackPane();
    void showManualPath();

    AppAlertPresenter& m_alerts;
    Workspace& m_workspace;
    SystemLog& m_log;
    FilterApprovalPanes m_panes;
    bool m_approvalAlertShown { false };
    LifeToken m_life;
};

}
