#include "gtk/MainWindowGtk.h"

#include "platform/SystemLog.h"

namespace brevanta {

namespace {

constexpr int width = 1100;
constexpr int height = 760;
constexpr int iconSize = 96;
constexpr int spacing = 12;
constexpr auto title = "Brevanta";

}

MainWindowGtk::MainWindowGtk(Gtk::Application& application, const std::filesystem::path& resources, SystemLog& log)
    : m_name(title)
{
    m_window.set_title(title);
    m_window.set_default_size(width, height);
    m_window.set_position(Gtk::WIN_POS_CENTER);
    m_window.signal_delete_event().connect([this](GdkEventAny*) {
        m_window.hide();
        return true;
    });

    showIcon(resources / "brevanta.svg", log);
    m_content.set_spacing(spacing);
    m_content.set_valign(Gtk::ALIGN_CENTER);
    m_content.add(m_icon);
    m_content.add(m_name);
    m_window.add(m_content);
    m_content.show_all();
    application.add_window(m_window);
}

void MainWindowGtk::showInFront() { m_window.present(); }

void MainWindowGtk::hide() { m_window.hide(); }

bool MainWindowGtk::isVisible() const { return m_window.get_visible(); }

void MainWindowGtk::showIcon(const std::filesystem::path& file, SystemLog& log)
{
    try {
        const auto scale = m_window.get_scale_factor();
        const auto pixels = Gdk::Pixbuf::create_from_file(file.string(), iconSize * scale, iconSize * scale);
        m_window.set_icon(pixels);
        m_icon.set(Cairo::RefPtr<Cairo::Surface>(
            new Cairo::Surface(gdk_cairo_surface_create_from_pixbuf(pixels->gobj(), scale, nullptr), true)));
    } catch (const Glib::Error& error) {
        log.log("[MainWindow] no icon: " + error.what().raw());
    }
}

}
