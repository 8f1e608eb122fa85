#include "gtk/AlertPanelGtk.h"

#include "base/Executor.h"
#include "gtk/ApplicationIcon.h"
#include "gtk/GLibText.h"

#include <ranges>
#include <utility>

namespace brevanta {

namespace {

constexpr int iconSize = 64;
constexpr int titleBarHeight = 16;

Gtk::MessageType messageType(AlertStyle style)
{
    return style == AlertStyle::warning ? Gtk::MESSAGE_WARNING : Gtk::MESSAGE_INFO;
}

AlertResponse responseOf(int number, std::size_t buttonCount)
{
    // Escape and the window's own button are negative numbers.
    const auto last = buttonCount > 0 ? buttonCount - 1 : 0;
    const auto button = number >= 0 ? static_cast<std::size_t>(number) : last;
    return { AlertEnd::button, button };
}

}

AlertPanelGtk::AlertPanelGtk(Gtk::Window& mainWindow, Executor& mainThread, std::filesystem::path resources)
    : m_mainWindow(mainWindow)
    , m_mainThread(mainThread)
    , m_resources(std::move(resources))
{
}

AlertPanelGtk::~AlertPanelGtk() = default;

void AlertPanelGtk::present(const Alert& alert, std::function<void(AlertResponse)> onEnd)
{
    if (m_open.contains(alert.identifier)) {
        m_mainThread.post([onEnd = std::move(onEnd)] { onEnd({ AlertEnd::withdrawn, 0 }); });
        return;
    }
    const auto dialog = newDialog(alert);
    m_open.emplace(alert.identifier, OpenAlert { .dialog = dialog, .onEnd = std::move(onEnd) });
    dialog->signal_response().connect([this, identifier = alert.identifier, buttonCount = alert.buttons.size()](
                                          int number) { end(identifier, responseOf(number, buttonCount)); });
    dialog->present();
}

void AlertPanelGtk::withdraw(const std::string& identifier) { end(identifier, { AlertEnd::withdrawn, 0 }); }

std::shared_ptr<Gtk::MessageDialog> AlertPanelGtk::newDialog(const Alert& alert)
{
    auto dialog = std::make_shared<Gtk::MessageDialog>(
        validUtf8(alert.message), false, messageType(alert.style), Gtk::BUTTONS_NONE, true);
    // Its title is for lists of windows: in a title bar it would stand above the same words. So that bar is an empty
    // one of our own, by which the alert can still be moved.
    dialog->set_title(validUtf8(alert.message));
    auto& titleBar = *Gtk::make_managed<Gtk::Box>();
    titleBar.set_size_request(-1, titleBarHeight);
    titleBar.show();
    dialog->set_titlebar(titleBar);
    showIcon(*dialog);
    dialog->set_secondary_text(validUtf8(alert.informativeText));
    // The default button stands on the right, as the desktop's own dialogs have it.
    for (auto number = static_cast<int>(alert.buttons.size()) - 1; number >= 0; --number)
        dialog->add_button(withoutMnemonics(alert.buttons[static_cast<std::size_t>(number)]), number);
    dialog->set_default_response(0);
    if (auto* const defaultButton = dialog->get_widget_for_response(0))
        defaultButton->grab_focus();
    if (m_mainWindow.get_visible())
        dialog->set_transient_for(m_mainWindow);
    else
        dialog->set_position(Gtk::WIN_POS_CENTER);
    return dialog;
}

void AlertPanelGtk::showIcon(Gtk::MessageDialog& dialog)
{
    const auto scale = dialog.get_scale_factor();
    const auto picture = applicationIcon(m_resources, iconSize, scale);
    auto* const row = dynamic_cast<Gtk::Box*>(dialog.get_message_area()->get_parent());
    if (!picture || !row)
        return; // The window has logged why.
    dialog.set_icon(*picture);
    auto& image = *Gtk::make_managed<Gtk::Image>();
    image.set_valign(Gtk::ALIGN_START);
    showApplicationIcon(image, *picture, scale);
    row->pack_start(image, Gtk::PACK_SHRINK);
    row->reorder_child(image, 0);
}

void AlertPanelGtk::end(const std::string& identifier, AlertResponse response)
{
    const auto open = m_open.find(identifier);
    if (open == m_open.end() || std::exchange(open->second.isLeaving, true))
        return;
    open->second.dialog->hide();
    // The dialog may be in the middle of its own signal, so it goes later too.
    m_mainThread.post(m_life.guard([this, identifier, response] {
        const auto ended = m_open.extract(identifier);
        ended.mapped().onEnd(response);
    }));
}

}
