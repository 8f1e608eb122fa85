#pragma once

#include "platform/MainWindow.h"

#include <filesystem>
#include <gtkmm.h>

namespace brevanta {

class SystemLog;

class MainWindowGtk final : public MainWindow {
public:
    struct Contents {
        Gtk::Widget& page; // Fills the window.
        Gtk::Widget& placeholder; // Lies over the page.
    };

    // `resources` holds the application's icon, brevanta.svg; without it the window has no picture. The contents live
    // longer than this object.
    MainWindowGtk(
        Gtk::Application& application, const std::filesystem::path& resources, Contents contents, SystemLog& log);
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
    Contents m_contents;
    Gtk::Window m_window;
    Gtk::Overlay m_layers;
};

}
