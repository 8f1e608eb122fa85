#pragma once

#include "platform/MainWindow.h"
#include "web/WindowFrame.h"

#include <filesystem>
#include <gtkmm.h>

namespace brevanta {

class SystemLog;
class UserDefaults;
class WindowMenuGtk;

// Comes back as large as it was, and on X11 where it was; under Wayland its place is the compositor's. What it was is
// kept in the user defaults, a second after it has changed, and when the window is hidden or goes.
class MainWindowGtk final : public MainWindow {
public:
    struct Contents {
        Gtk::Widget& page; // Fills the window.
        Gtk::Widget& placeholder; // Lies over the page.
        WindowMenuGtk& menu; // Above both.
    };

    // `resources` holds the application's icon, brevanta.svg; without it the window has no picture. The contents and
    // the defaults live longer than this object.
    MainWindowGtk(Gtk::Application& application, const std::filesystem::path& resources, Contents contents,
        UserDefaults& defaults, SystemLog& log);
    ~MainWindowGtk() override;
    MainWindowGtk(const MainWindowGtk&) = delete;
    MainWindowGtk& operator=(const MainWindowGtk&) = delete;

    void build(const MainWindowLayout& layout) override;
    void showInFront() override;
    void hide() override;
    [[nodiscard]] bool isVisible() const override;

    // For what is shown above the window. Lives as long as this object.
    [[nodiscard]] Gtk::Window& window() { return m_window; }

private:
    void restoreFrame();
    void frameChanged();
    void keepFrame();

    Contents m_contents;
    UserDefaults& m_defaults;
    WindowSize m_initialSize;
    Gtk::Window m_window;
    Gtk::Box m_rows { Gtk::ORIENTATION_VERTICAL };
    Gtk::Overlay m_layers;
    Glib::RefPtr<Gtk::AccelGroup> m_keys;
    sigc::connection m_keeping; // Of the second in which the frame may still change.
};

}
