#pragma once

#include "platform/Placeholder.h"

#include <filesystem>
#include <gtkmm.h>

namespace brevanta {

class PlaceholderGtk final : public Placeholder {
public:
    // `resources` holds the application's icon, brevanta.svg; it is left out when it cannot be shown.
    explicit PlaceholderGtk(const std::filesystem::path& resources);
    PlaceholderGtk(const PlaceholderGtk&) = delete;
    PlaceholderGtk& operator=(const PlaceholderGtk&) = delete;

    void show(const PlaceholderContent& content) override;
    void hide() override;
    void setButtonHandler(std::function<void()> handler) override { m_buttonHandler = std::move(handler); }

    // What lies over the page. Lives as long as this object.
    [[nodiscard]] Gtk::Widget& widget() { return m_ground; }

private:
    void showIcon(const std::filesystem::path& resources);

    std::function<void()> m_buttonHandler;
    Gtk::EventBox m_ground; // Keeps the pointer from the page behind it.
    Gtk::Box m_content { Gtk::ORIENTATION_VERTICAL };
    Gtk::Image m_icon;
    Gtk::Label m_label;
    Gtk::Button m_button;
};

}
