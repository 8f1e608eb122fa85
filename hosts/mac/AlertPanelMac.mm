#include "mac/AlertPanelMac.h"

#include "mac/TextMac.h"

#include <algorithm>
#include <utility>

namespace brevanta {

namespace {

NSAlert* createPanel(const Alert& alert)
{
    NSAlert* const panel = [[NSAlert alloc] init];
    panel.alertStyle = alert.style == AlertStyle::warning ? NSAlertStyleWarning : NSAlertStyleInformational;
    panel.messageText = displayString(alert.message);
    panel.informativeText = displayString(alert.informativeText);
    for (const std::string& title : alert.buttons)
        [panel addButtonWithTitle:displayString(title)];
    if (alert.buttons.size() > 1)
        panel.buttons.lastObject.keyEquivalent = @"\033"; // Escape closes the alert.
    panel.window.preventsApplicationTerminationWhenModal = NO;
    return panel;
}

AlertResponse responseFrom(NSModalResponse response, std::size_t buttonCount)
{
    if (response == NSModalResponseAbort)
        return { AlertEnd::withdrawn, 0 };
    const std::size_t last = buttonCount == 0 ? 0 : buttonCount - 1;
    if (response < NSAlertFirstButtonReturn)
        return { AlertEnd::button, last };
    return { AlertEnd::button, std::min(static_cast<std::size_t>(response - NSAlertFirstButtonReturn), last) };
}

}

AlertPanelMac::AlertPanelMac(MainLoop& mainLoop)
    : m_mainLoop(mainLoop)
{
}

void AlertPanelMac::present(const Alert& alert, std::function<void(AlertResponse)> onEnd)
{
    const bool waits = std::ranges::any_of(
        m_waiting, [&](const Request& request) { return request.alert.identifier == alert.identifier; });
    if (waits || (m_shown && m_shownIdentifier == alert.identifier)) {
        postWithdrawn(std::move(onEnd));
        return;
    }
    m_waiting.push_back({ alert, std::move(onEnd) });
    showNextSoon();
}

void AlertPanelMac::withdraw(const std::string& identifier)
{
    const auto waiting = std::ranges::find_if(
        m_waiting, [&](const Request& request) { return request.alert.identifier == identifier; });
    if (waiting != m_waiting.end()) {
        postWithdrawn(std::move(waiting->onEnd));
        m_waiting.erase(waiting);
        return;
    }
    if (!m_shown || m_shownIdentifier != identifier)
        return;
    // Until the alert has ended: its modal loop may not have begun, or another panel may lie above it.
    m_abortTimer = m_mainLoop.startTimer(0.1, TimerRepeat::forever, [this] { abortShown(); });
}

// A timer and not posted work: it does not fire while a menu is open, where an alert must not begin.
void AlertPanelMac::showNextSoon()
{
    if (!m_shown && !m_waiting.empty())
        m_showTimer = m_mainLoop.startTimer(0, TimerRepeat::once, [this] { runNext(); });
}

void AlertPanelMac::runNext()
{
    if (m_shown || m_waiting.empty())
        return;
    Request request = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_shownIdentifier = request.alert.identifier;
    m_shown = createPanel(request.alert);
    const NSModalResponse response = [m_shown runModal];
    m_abortTimer = nullptr;
    m_shown = nil;
    showNextSoon();
    request.onEnd(responseFrom(response, request.alert.buttons.size()));
}

// abortModal leaves the timer's callback by an exception, as its documentation page allows for timers of the
// modal-panel mode. So it is the last thing done, and no other code of the client lies between it and the modal loop.
void AlertPanelMac::abortShown()
{
    if (m_shown && NSApplication.sharedApplication.modalWindow == m_shown.window)
        [NSApplication.sharedApplication abortModal];
}

void AlertPanelMac::postWithdrawn(std::function<void(AlertResponse)> onEnd)
{
    m_mainLoop.post([onEnd = std::move(onEnd)] { onEnd({ AlertEnd::withdrawn, 0 }); });
}

}
