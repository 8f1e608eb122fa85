#include "gtk/NotificationCenterGtk.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace brevanta {

namespace {

// More than any desktop shows; what is forgotten can no longer be replaced or taken away.
constexpr std::size_t mostSlots = 200;

// The three characters that notification markup reads as its own.
std::string escaped(const std::string& body)
{
    std::string markup;
    for (const char c : body) {
        if (c == '&')
            markup += "&amp;";
        else if (c == '<')
            markup += "&lt;";
        else if (c == '>')
            markup += "&gt;";
        else
            markup.push_back(c);
    }
    return markup;
}

}

NotificationCenterGtk::NotificationCenterGtk(GDBusConnection* bus, DesktopIdentity identity)
    : m_service(bus, std::move(identity),
          { .closed = [this](std::uint32_t number) { forgetOnScreen(number); },
              .serviceLost = [this] { forgetService(); } })
{
}

void NotificationCenterGtk::add(const Notification& notification, OnEnd onEnd)
{
    enqueue(notification.identifier, { Delivery { notification, std::move(onEnd) } });
}

void NotificationCenterGtk::getAuthorization(std::function<void(NotificationAuthorization)> onEnd)
{
    m_service.askCapabilities([onEnd = std::move(onEnd)](const auto& answer) {
        onEnd(answer ? NotificationAuthorization::authorized : NotificationAuthorization::notDetermined);
    });
}

void NotificationCenterGtk::requestAuthorization(std::function<void(NotificationAuthorization)> onEnd)
{
    getAuthorization(std::move(onEnd));
}

void NotificationCenterGtk::removeDelivered(const std::vector<std::string>& identifiers)
{
    for (const auto& identifier : identifiers) {
        if (m_slots.contains(identifier))
            enqueue(identifier, {});
    }
}

void NotificationCenterGtk::enqueue(const std::string& identifier, Request request)
{
    auto& slot = m_slots[identifier];
    slot.lastUse = ++m_uses;
    slot.requests.push_back(std::move(request));
    proceed(identifier);
    dropOldestSlots();
}

void NotificationCenterGtk::proceed(const std::string& identifier)
{
    const auto found = m_slots.find(identifier);
    if (found == m_slots.end())
        return;
    auto& slot = found->second;
    while (!slot.awaitsAnswer && !slot.requests.empty()) {
        auto request = std::move(slot.requests.front());
        slot.requests.pop_front();
        if (request.delivery) {
            slot.awaitsAnswer = true;
            deliver(std::move(*request.delivery));
        } else if (const auto number = std::exchange(slot.number, 0))
            m_service.close(number);
    }
    if (!slot.awaitsAnswer && slot.number == 0)
        m_slots.erase(found);
}

void NotificationCenterGtk::deliver(Delivery delivery)
{
    whenCapabilitiesAreKnown([this, delivery = std::move(delivery)] { send(delivery); });
}

void NotificationCenterGtk::send(const Delivery& delivery)
{
    const auto& [identifier, title, body] = delivery.notification;
    const DesktopNotification notification { .replaces = m_slots[identifier].number,
        .identifier = identifier,
        .summary = title,
        .body = m_bodyMarkup == BodyMarkup::yes ? escaped(body) : body };
    m_service.notify(notification, [this, delivery](auto answer) { delivered(delivery, std::move(answer)); });
}

void NotificationCenterGtk::delivered(const Delivery& delivery, std::expected<std::uint32_t, NotificationError> answer)
{
    const auto& identifier = delivery.notification.identifier;
    auto& slot = m_slots[identifier];
    slot.awaitsAnswer = false;
    if (answer)
        slot.number = *answer;
    proceed(identifier);
    delivery.onEnd(answer ? std::expected<void, NotificationError> {} : std::unexpected(answer.error()));
}

void NotificationCenterGtk::whenCapabilitiesAreKnown(std::function<void()> action)
{
    if (m_bodyMarkup == BodyMarkup::yes || m_bodyMarkup == BodyMarkup::no)
        return action();
    m_waitingForCapabilities.push_back(std::move(action));
    if (std::exchange(m_bodyMarkup, BodyMarkup::asked) == BodyMarkup::notAskedYet)
        m_service.askCapabilities([this](const auto& answer) { capabilitiesCame(answer); });
}

void NotificationCenterGtk::capabilitiesCame(const std::expected<std::vector<std::string>, NotificationError>& answer)
{
    const bool markup = answer && std::ranges::find(*answer, "body-markup") != answer->end();
    m_bodyMarkup = markup ? BodyMarkup::yes : BodyMarkup::no;
    for (const auto& action : std::exchange(m_waitingForCapabilities, {}))
        action();
    if (!answer)
        m_bodyMarkup = BodyMarkup::notAskedYet; // The service may be started, or come to life, before the next one.
}

void NotificationCenterGtk::forgetOnScreen(std::uint32_t number)
{
    const auto found
        = std::ranges::find_if(m_slots, [number](const auto& entry) { return entry.second.number == number; });
    if (number == 0 || found == m_slots.end())
        return;
    found->second.number = 0;
    if (!found->second.awaitsAnswer)
        m_slots.erase(found);
}

void NotificationCenterGtk::forgetService()
{
    if (m_bodyMarkup != BodyMarkup::asked)
        m_bodyMarkup = BodyMarkup::notAskedYet;
    for (auto& [identifier, slot] : m_slots)
        slot.number = 0;
    std::erase_if(m_slots, [](const auto& entry) { return !entry.second.awaitsAnswer; });
}

void NotificationCenterGtk::dropOldestSlots()
{
    while (m_slots.size() > mostSlots) {
        auto oldest = m_slots.end();
        for (auto slot = m_slots.begin(); slot != m_slots.end(); ++slot) {
            if (!slot->second.awaitsAnswer
                && (oldest == m_slots.end() || slot->second.lastUse < oldest->second.lastUse))
                oldest = slot;
        }
        if (oldest == m_slots.end())
            return;
        m_slots.erase(oldest);
    }
}

}
