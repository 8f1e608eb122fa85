#include "gtk/AlertPanelGtk.h"

#include "base/Executor.h"
#include "gtk/GLibText.h"

#include <ranges>
#include <utility>

namespace brevanta {

namespace {

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

AlertPanelGtk::AlertPanelGtk(Gtk::Window& mainWindow, Executor& mainThread)
    : m_mainWindow(mainWindow)
    , m_mainThread(mainThread)
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
    dialog->set_title(validUtf8(alert.message));
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
