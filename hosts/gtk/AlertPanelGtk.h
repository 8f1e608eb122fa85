#pragma once

#include "base/LifeToken.h"
#include "platform/AlertPanel.h"

#include <filesystem>
#include <gtkmm.h>
#include <map>
#include <memory>

namespace brevanta {

class Executor;

// Message dialogs that are shown and answered by signals: a dialog that runs a loop of its own would hold the quit.
class AlertPanelGtk final : public AlertPanel {
public:
    // Alerts stand above `mainWindow` while it is visible. Both outlive this object, whose end takes open alerts off
    // the screen without ending them. `resources` holds the application's icon, brevanta.svg, which each alert shows as
    // on a Mac; it is left out when it cannot be shown.
    AlertPanelGtk(Gtk::Window& mainWindow, Executor& mainThread, std::filesystem::path resources);
    ~AlertPanelGtk() override;
    AlertPanelGtk(const AlertPanelGtk&) = delete;
    AlertPanelGtk& operator=(const AlertPanelGtk&) = delete;

    void present(const Alert& alert, std::function<void(AlertResponse)> onEnd) override;
    void withdraw(const std::string& identifier) override;

private:
    struct OpenAlert {
        std::shared_ptr<Gtk::MessageDialog> dialog;
        std::function<void(AlertResponse)> onEnd;
        bool isLeaving { false }; // It is hidden, and its end is about to be told.
    };

    [[nodiscard]] std::shared_ptr<Gtk::MessageDialog> newDialog(const Alert& alert);
    void showIcon(Gtk::MessageDialog& dialog);
    void end(const std::string& identifier, AlertResponse response);

    Gtk::Window& m_mainWindow;
    Executor& m_mainThread;
    std::filesystem::path m_resources;
    std::map<std::string, OpenAlert> m_open;
    LifeToken m_life;
};

}
