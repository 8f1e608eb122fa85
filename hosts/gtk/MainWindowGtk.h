#pragma once

#include "platform/MainWindow.h"

#include <filesystem>
#include <gtkmm.h>

namespace brevanta {

class SystemLog;

class MainWindowGtk final : public MainWindow {
public:
    // `resources` holds the application's icon, brevanta.svg; without it the window has no picture.
    MainWindowGtk(Gtk::Application& application, const std::filesystem::path& resources, SystemLog& log);
    MainWindowGtk(const MainWindowGtk&) = delete;
    MainWindowGtk& operator=(const MainWindowGtk&) = delete;

    void showInFront() override;
    void hide() override;
    [[nodiscard]] bool isVisible() const override;

    // For what is shown above the window. Lives as long as this object.
    [[nodiscard]] Gtk::Window& window() { return m_window; }

private:
    void showIcon(const std::filesystem::path& file, SystemLog& log);

    Gtk::Window m_window;
    Gtk::Box m_content { Gtk::ORIENTATION_VERTICAL };
    Gtk::Image m_icon;
    Gtk::Label m_name;
};

}
