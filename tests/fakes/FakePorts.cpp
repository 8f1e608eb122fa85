#include "fakes/FakePorts.h"

#include "support/LogHygiene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace brevanta {

void FakeSystemLog::log(std::string_view line)
{
    EXPECT_TRUE(beginsWithItsTag(line)) << line;
    told(std::string(line));
    const std::lock_guard lock(m_mutex);
    lines.emplace_back(line);
}

void FakeSystemLog::logToCategory(std::string_view category, std::string_view line)
{
    const std::lock_guard lock(m_mutex);
    categorized.push_back(std::string(category) + ": " + std::string(line));
}

void FakeSystemLog::writeStandardError(std::string_view line)
{
    EXPECT_TRUE(isWatchdogLine(line)) << line;
    told(std::string(line));
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

StoredDefault FakeUserDefaults::persistent(std::string_view key) const
{
    if (m_unknown.contains(key))
        return { .isStored = true, .value = std::nullopt };
    const auto value = get(key);
    return { .isStored = value.has_value(), .value = value };
}

void FakeUserDefaults::remove(std::string_view key)
{
    if (const auto found = m_unknown.find(key); found != m_unknown.end())
        m_unknown.erase(found);
    if (const auto found = m_values.find(key); found != m_values.end())
        m_values.erase(found);
}

void FakeStatusItem::show(const StatusItemContent& newContent)
{
    told("menu");
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
    if (std::ranges::find(m_open, alert.identifier, &Open::identifier) != m_open.end())
        return m_mainLoop.post([onEnd = std::move(onEnd)] { onEnd({ AlertEnd::withdrawn, 0 }); });
    presented.push_back(alert);
    m_open.push_back({ alert.identifier, std::move(onEnd) });
}

void FakeAlertPanel::withdraw(const std::string& identifier) { end(identifier, { AlertEnd::withdrawn, 0 }); }

void FakeAlertPanel::answer(AlertResponse response)
{
    if (const auto oldest = std::ranges::find(m_open, false, &Open::isLeaving); oldest != m_open.end())
        end(oldest->identifier, response);
}

void FakeAlertPanel::end(const std::string& identifier, AlertResponse response)
{
    const auto open = std::ranges::find(m_open, identifier, &Open::identifier);
    if (open == m_open.end() || std::exchange(open->isLeaving, true))
        return;
    m_mainLoop.post([this, identifier, response] {
        const auto ended = std::ranges::find(m_open, identifier, &Open::identifier);
        const auto onEnd = std::move(ended->onEnd);
        m_open.erase(ended);
        onEnd(response);
    });
}

void FakeMainWindow::build(const MainWindowLayout& layout)
{
    told("window");
    built = layout;
}

void FakeMainWindow::showInFront()
{
    m_visible = true;
    ++timesShown;
}

void FakePlaceholder::show(const PlaceholderContent& newContent)
{
    content = newContent;
    isShown = true;
}

void FakePlaceholder::pressButton()
{
    if (isShown && !content.button.empty() && m_handler)
        m_handler();
}

void FakeOpenPanel::present(const OpenPanelRequest& request, std::function<void(std::vector<std::string>)> onEnd)
{
    presented.push_back(request);
    m_open.push_back(std::move(onEnd));
}

void FakeOpenPanel::choose(const std::vector<std::string>& paths)
{
    if (m_open.empty())
        return;
    m_mainLoop.post([onEnd = std::move(m_open.front()), paths] { onEnd(paths); });
    m_open.pop_front();
}

void FakeWorkspace::openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd)
{
    opened.push_back(url);
    m_mainLoop.post([onEnd = std::move(onEnd), result = outcome] { onEnd(result); });
}

void FakeWorkspace::openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd)
{
    opened.push_back(path);
    if (!folderNeverOpens)
        m_mainLoop.post([onEnd = std::move(onEnd), result = outcome] { onEnd(result); });
}

void FakeNotificationCenter::add(
    const Notification& notification, std::function<void(std::expected<void, NotificationError>)> onEnd)
{
    told(notification.identifier);
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

std::optional<ApplicationFacts> FakeWorkspace::applicationAt(const std::string& path) const
{
    const auto found = applications.find(path);
    return found == applications.end() ? std::nullopt : std::optional(found->second);
}

std::vector<std::uint8_t> FakeWorkspace::iconPng(const std::string&, int pixels) const
{
    iconSizes.push_back(pixels);
    return icon;
}

void FakeWorkspace::setApplicationHandler(std::function<void(ApplicationChange, const RunningApplication&)> handler)
{
    m_applicationHandler = std::move(handler);
    m_registration.emplace();
}

std::optional<std::string> FakeWorkspace::displayNameOf(const std::string& bundleIdentifier) const
{
    const auto found = displayNames.find(bundleIdentifier);
    return found == displayNames.end() ? std::nullopt : std::optional(found->second);
}

void FakeWorkspace::launch(const RunningApplication& application)
{
    m_running.push_back(application);
    tell(ApplicationChange::launched, application);
}

void FakeWorkspace::quit(const RunningApplication& application)
{
    if (std::erase(m_running, application))
        tell(ApplicationChange::terminated, application);
}

void FakeWorkspace::tell(ApplicationChange change, const RunningApplication& application)
{
    if (m_applicationHandler)
        m_mainLoop.post(m_registration->guard(
            [handler = m_applicationHandler, change, application] { handler(change, application); }));
}

void FakeNotificationCenter::getAuthorization(std::function<void(NotificationAuthorization)> onEnd)
{
    m_mainLoop.post([onEnd = std::move(onEnd), answer = authorization] { onEnd(answer); });
}

void FakeNotificationCenter::requestAuthorization(std::function<void(NotificationAuthorizationAnswer)> onEnd)
{
    ++requests;
    if (holdsRequests)
        return m_held.push_back(std::move(onEnd));
    if (authorization == NotificationAuthorization::notDetermined)
        authorization = answerOfUser;
    answer(std::move(onEnd));
}

void FakeNotificationCenter::answer(std::function<void(NotificationAuthorizationAnswer)> onEnd)
{
    m_mainLoop.post([onEnd = std::move(onEnd), answer = NotificationAuthorizationAnswer { authorization, reason }] {
        onEnd(answer);
    });
}

void FakeNotificationCenter::answerHeldRequests(NotificationAuthorization decision)
{
    authorization = decision;
    for (auto& onEnd : std::exchange(m_held, {}))
        answer(std::move(onEnd));
}

void FakeNotificationCenter::setResponseHandler(std::function<void(const NotificationResponse&)> handler)
{
    m_responseHandler = std::move(handler);
    if (m_responseHandler)
        m_mainLoop.post([this] { tellResponses(); });
}

void FakeNotificationCenter::click(const NotificationResponse& response)
{
    m_responses.push_back(response);
    m_mainLoop.post([this] { tellResponses(); });
}

void FakeNotificationCenter::tellResponses()
{
    if (!m_responseHandler)
        return;
    for (const auto& response : std::exchange(m_responses, {}))
        m_responseHandler(response);
}

}
