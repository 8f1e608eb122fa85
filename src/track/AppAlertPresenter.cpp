#include "track/AppAlertPresenter.h"

#include "base/Executor.h"

#include <algorithm>
#include <utility>

namespace brevanta {

AppAlertPresenter::AppAlertPresenter(AlertPanel& panel, Executor& mainLoop)
    : m_panel(panel)
    , m_mainLoop(mainLoop)
{
}

void AppAlertPresenter::present(const Alert& alert, std::function<void(AlertResponse)> onEnd)
{
    if (isKnown(alert.identifier))
        return endLater(std::move(onEnd));
    m_waiting.push_back({ alert, std::move(onEnd) });
    showNext();
}

void AppAlertPresenter::withdraw(const std::string& identifier)
{
    if (isShown(identifier)) {
        endLater(std::exchange(m_shown->onEnd, nullptr));
        return m_panel.withdraw(identifier);
    }
    const auto waiting = std::ranges::find(
        m_waiting, identifier, [](const Entry& entry) -> const std::string& { return entry.alert.identifier; });
    if (waiting == m_waiting.end())
        return;
    endLater(std::move(waiting->onEnd));
    m_waiting.erase(waiting);
}

bool AppAlertPresenter::isShown(const std::string& identifier) const
{
    return m_shown && m_shown->onEnd && m_shown->alert.identifier == identifier;
}

bool AppAlertPresenter::isKnown(const std::string& identifier) const
{
    return isShown(identifier)
        || std::ranges::any_of(m_waiting, [&](const Entry& entry) { return entry.alert.identifier == identifier; });
}

void AppAlertPresenter::showNext()
{
    if (m_shown || m_waiting.empty())
        return;
    m_shown = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_panel.present(m_shown->alert, m_life.guard([this](AlertResponse response) { ended(response); }));
}

void AppAlertPresenter::ended(AlertResponse response)
{
    const auto entry = std::exchange(m_shown, std::nullopt);
    // The next one first: what the answer brings about comes behind it.
    showNext();
    if (entry->onEnd)
        entry->onEnd(response);
}

void AppAlertPresenter::endLater(std::function<void(AlertResponse)> onEnd)
{
    m_mainLoop.post(m_life.guard([onEnd = std::move(onEnd)] { onEnd({ .end = AlertEnd::withdrawn }); }));
}

}
