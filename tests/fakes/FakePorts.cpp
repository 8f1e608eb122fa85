#include "fakes/FakePorts.h"

#include <algorithm>

namespace brevanta {

void FakeSystemLog::log(std::string_view line)
{
    const std::lock_guard lock(m_mutex);
    lines.emplace_back(line);
}

void FakeSystemLog::writeStandardError(std::string_view line)
{
    const std::lock_guard lock(m_mutex);
    standardError.emplace_back(line);
}

std::optional<DefaultsValue> FakeUserDefaults::get(std::string_view key) const
{
    const auto found = m_values.find(key);
    return found == m_values.end() ? std::nullopt : std::optional(found->second);
}

void FakeUserDefaults::set(std::string_view key, const DefaultsValue& value)
{
    m_values.insert_or_assign(std::string(key), value);
}

void FakeUserDefaults::remove(std::string_view key)
{
    if (const auto found = m_values.find(key); found != m_values.end())
        m_values.erase(found);
}

void FakeStatusItem::show(const StatusItemContent& newContent)
{
    if (newContent != content)
        ++changes;
    content = newContent;
}

void FakeStatusItem::choose(const std::string& title)
{
    const auto item = std::ranges::find(content.menu.items, title, &MenuItem::title);
    if (item == content.menu.items.end() || !item->enabled || !item->visible || item->kind != MenuItemKind::command)
        return;
    if (m_handler)
        m_handler(item->id);
}

std::optional<std::string> FakeStatusItem::visibleTitle(int tag) const
{
    const auto item = std::ranges::find(content.menu.items, tag, &MenuItem::tag);
    return item == content.menu.items.end() || !item->visible ? std::nullopt : std::optional(item->title);
}

void FakeAlertPanel::present(const Alert& alert, std::function<void(AlertResponse)> onEnd)
{
    if (std::ranges::any_of(m_open, [&](const auto& open) { return open.first.identifier == alert.identifier; }))
        return m_mainLoop.post([onEnd = std::move(onEnd)] { onEnd({ AlertEnd::withdrawn, 0 }); });
    presented.push_back(alert);
    m_open.emplace_back(alert, std::move(onEnd));
}

void FakeAlertPanel::withdraw(const std::string& identifier)
{
    const auto found
        = std::ranges::find_if(m_open, [&](const auto& open) { return open.first.identifier == identifier; });
    if (found == m_open.end())
        return;
    m_mainLoop.post([onEnd = std::move(found->second)] { onEnd({ AlertEnd::withdrawn, 0 }); });
    m_open.erase(found);
}

void FakeAlertPanel::answer(AlertResponse response)
{
    if (m_open.empty())
        return;
    m_mainLoop.post([onEnd = std::move(m_open.front().second), response] { onEnd(response); });
    m_open.erase(m_open.begin());
}

void FakeMainWindow::showInFront()
{
    m_visible = true;
    ++timesShown;
}

void FakeWorkspace::openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd)
{
    opened.push_back(url);
    m_mainLoop.post([onEnd = std::move(onEnd), result = outcome] { onEnd(result); });
}

void FakeWorkspace::openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd)
{
    opened.push_back(path);
    m_mainLoop.post([onEnd = std::move(onEnd), result = outcome] { onEnd(result); });
}

void FakeNotificationCenter::add(
    const Notification& notification, std::function<void(std::expected<void, NotificationError>)> onEnd)
{
    added.push_back(notification);
    m_mainLoop.post([onEnd = std::move(onEnd), error = failure] {
        if (error)
            onEnd(std::unexpected(*error));
        else
            onEnd({});
    });
}

void FakeNotificationCenter::removeDelivered(const std::vector<std::string>& identifiers)
{
    removed.insert(removed.end(), identifiers.begin(), identifiers.end());
}

}
