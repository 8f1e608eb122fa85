#pragma once

#include "platform/OpenPanel.h"

#include <gtkmm.h>
#include <map>
#include <memory>

namespace brevanta {

class Executor;

// GTK's file chooser. An application is here, as on the Mac, a folder whose name ends in ".app"; another folder counts
// as none. GTK chooses either files or folders, so that files are all there is to choose where both were allowed.
class OpenPanelGtk final : public OpenPanel {
public:
    // Panels stand above `mainWindow` while it is visible. Both outlive this object, whose end takes open panels off
    // the screen without ending them.
    OpenPanelGtk(Gtk::Window& mainWindow, Executor& mainThread);
    ~OpenPanelGtk() override;
    OpenPanelGtk(const OpenPanelGtk&) = delete;
    OpenPanelGtk& operator=(const OpenPanelGtk&) = delete;

    void present(const OpenPanelRequest& request, std::function<void(std::vector<std::string>)> onEnd) override;

private:
    struct OpenDialog {
        std::shared_ptr<Gtk::FileChooserDialog> dialog;
        OpenPanelKind kind;
        std::function<void(std::vector<std::string>)> onEnd;
    };

    [[nodiscard]] std::shared_ptr<Gtk::FileChooserDialog> newDialog(const OpenPanelRequest& request);
    void end(int number, int response);

    Gtk::Window& m_mainWindow;
    Executor& m_mainThread;
    std::map<int, OpenDialog> m_open;
    int m_nextNumber { 0 };
};

}
