#include "gtk/MainWindowGtk.h"

#include "gtk/ApplicationIcon.h"
#include "gtk/GLibText.h"
#include "gtk/WindowMenuGtk.h"
#include "platform/SystemLog.h"

#include <string_view>
#include <vector>

namespace brevanta {

namespace {

constexpr int iconSize = 96;
constexpr unsigned keepingMilliseconds = 1000;

// Only there do windows have a place that they know of.
bool isX11(const Glib::RefPtr<Gdk::Display>& display)
{
    return std::string_view(G_OBJECT_TYPE_NAME(display->gobj())) == "GdkX11Display";
}

std::vector<ScreenArea> screensOf(const Glib::RefPtr<Gdk::Display>& display)
{
    std::vector<ScreenArea> screens;
    for (int i = 0; i < display->get_n_monitors(); ++i) {
        Gdk::Rectangle area;
        display->get_monitor(i)->get_workarea(area);
        screens.push_back(
            { .position = { area.get_x(), area.get_y() }, .size = { area.get_width(), area.get_height() } });
    }
    return screens;
}

}

MainWindowGtk::MainWindowGtk(Gtk::Application& application, const std::filesystem::path& resources, Contents contents,
    UserDefaults& defaults, SystemLog& log)
    : m_contents(contents)
    , m_defaults(defaults)
    , m_keys(Gtk::AccelGroup::create())
{
    m_window.signal_delete_event().connect([this](GdkEventAny*) {
        hide();
        return true;
    });
    m_window.signal_configure_event().connect(
        [this](GdkEventConfigure*) {
            frameChanged();
            return false;
        },
        false);
    m_window.signal_window_state_event().connect([this](GdkEventWindowState*) {
        frameChanged();
        return false;
    });
    // As the close button does.
    addControlKey(*m_keys.operator->(), 'w', [this] {
        m_window.close();
        return true;
    });
    m_window.add_accel_group(m_keys);
    m_window.add_accel_group(m_contents.menu.keys());
    if (const auto icon = applicationIcon(resources, iconSize, m_window.get_scale_factor()))
        m_window.set_icon(*icon);
    else
        log.log("[MainWindow] no icon: " + icon.error());
    application.add_window(m_window);
}

MainWindowGtk::~MainWindowGtk()
{
    keepFrame();
    // The contents are not ours to destroy.
    Gtk::Container& layers = m_layers;
    for (auto* const content : layers.get_children())
        layers.remove(*content);
    if (m_contents.menu.bar().get_parent() == &m_rows)
        m_rows.remove(m_contents.menu.bar());
}

void MainWindowGtk::build(const MainWindowLayout& layout)
{
    m_window.set_title(validUtf8(layout.title));
    m_initialSize = { layout.width, layout.height };
    m_layers.set_size_request(leastContentSize.width, leastContentSize.height);
    m_layers.add(m_contents.page);
    m_layers.add_overlay(m_contents.placeholder);
    m_rows.pack_start(m_contents.menu.bar(), Gtk::PACK_SHRINK);
    m_rows.pack_start(m_layers);
    m_window.add(m_rows);
    m_layers.show();
    m_rows.show();
}

void MainWindowGtk::showInFront()
{
    if (!m_window.get_visible())
        restoreFrame(); // A window that is hidden forgets its place.
    m_window.deiconify();
    m_window.present();
}

void MainWindowGtk::hide()
{
    keepFrame();
    m_window.hide();
}

bool MainWindowGtk::isVisible() const { return m_window.get_visible(); }

void MainWindowGtk::restoreFrame()
{
    const auto frame = rememberedFrame(m_defaults, screensOf(m_window.get_display()), m_initialSize);
    const auto size = frame.size.value_or(m_initialSize);
    m_window.set_default_size(size.width, size.height);
    m_window.resize(size.width, size.height);
    const bool knowsPlace = frame.position.has_value() && isX11(m_window.get_display());
    m_window.set_position(knowsPlace ? Gtk::WIN_POS_NONE : Gtk::WIN_POS_CENTER);
    if (knowsPlace)
        m_window.move(frame.position->x, frame.position->y);
    if (frame.extent == WindowExtent::maximized)
        m_window.maximize();
}

// While the user moves or sizes the window this comes many times a second; and what makes it larger than usual is told
// before or after the size that follows from that.
void MainWindowGtk::frameChanged()
{
    m_keeping.disconnect();
    m_keeping = Glib::signal_timeout().connect(
        [this] {
            keepFrame();
            return false;
        },
        keepingMilliseconds);
}

void MainWindowGtk::keepFrame()
{
    m_keeping.disconnect();
    const auto surface = m_window.get_window();
    if (!m_window.get_visible() || !surface)
        return;
    const auto state = surface->get_state();
    WindowFrame frame { .extent
        = (state & Gdk::WINDOW_STATE_MAXIMIZED) ? WindowExtent::maximized : WindowExtent::free };
    if (!(state & (Gdk::WINDOW_STATE_MAXIMIZED | Gdk::WINDOW_STATE_FULLSCREEN | Gdk::WINDOW_STATE_ICONIFIED))) {
        frame.size.emplace();
        m_window.get_size(frame.size->width, frame.size->height);
        if (isX11(m_window.get_display())) {
            frame.position.emplace();
            m_window.get_position(frame.position->x, frame.position->y);
        }
    }
    rememberFrame(m_defaults, frame);
}

}
