#include "gtk/MainWindowGtk.h"

#include "gtk/ApplicationIcon.h"
#include "gtk/GLibText.h"
#include "platform/SystemLog.h"

namespace brevanta {

namespace {

constexpr int iconSize = 96;

}

MainWindowGtk::MainWindowGtk(
    Gtk::Application& application, const std::filesystem::path& resources, Contents contents, SystemLog& log)
    : m_contents(contents)
{
    m_window.set_position(Gtk::WIN_POS_CENTER);
    m_window.signal_delete_event().connect([this](GdkEventAny*) {
        m_window.hide();
        return true;
    });
    if (const auto icon = applicationIcon(resources, iconSize, m_window.get_scale_factor()))
        m_window.set_icon(*icon);
    else
        log.log("[MainWindow] no icon: " + icon.error());
    application.add_window(m_window);
}

MainWindowGtk::~MainWindowGtk()
{
    // The contents are not ours to destroy.
    Gtk::Container& layers = m_layers;
    for (auto* const content : layers.get_children())
        layers.remove(*content);
}

void MainWindowGtk::build(const MainWindowLayout& layout)
{
    m_window.set_title(validUtf8(layout.title));
    m_window.set_default_size(layout.width, layout.height);
    m_layers.add(m_contents.page);
    m_layers.add_overlay(m_contents.placeholder);
    m_window.add(m_layers);
    m_layers.show();
}

void MainWindowGtk::showInFront()
{
    m_window.deiconify();
    m_window.present();
}

void MainWindowGtk::hide() { m_window.hide(); }

bool MainWindowGtk::isVisible() const { return m_window.get_visible(); }

}
