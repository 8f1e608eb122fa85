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

NotificationCenterGtk::NotificationCenterGtk(GDBusConnection* bus, DesktopIdentity identity, Sounds sounds)
    : m_sounds(std::move(sounds))
    , m_service(bus, std::move(identity),
          { .closed = [this](std::uint32_t number) { forgetOnScreen(number); },
              .clicked = [this](std::uint32_t number) { clicked(number); },
              .serviceLost = [this] { forgetService(); } })
{
}

NotificationCenterGtk::~NotificationCenterGtk()
{
    if (m_responseSource)
        g_source_remove(m_responseSource);
}

void NotificationCenterGtk::add(const Notification& notification, OnEnd onEnd)
{
    enqueue(notification.identifier, { Delivery { notification, std::move(onEnd) } });
}

void NotificationCenterGtk::getAuthorization(std::function<void(NotificationAuthorization)> onEnd)
{
    requestAuthorization([onEnd = std::move(onEnd)](const auto& answer) { onEnd(answer.authorization); });
}

void NotificationCenterGtk::requestAuthorization(std::function<void(NotificationAuthorizationAnswer)> onEnd)
{
    m_service.askCapabilities([onEnd = std::move(onEnd)](const auto& answer) {
        if (answer)
            onEnd({ .authorization = NotificationAuthorization::authorized });
        else
            onEnd({ .authorization = NotificationAuthorization::notDetermined, .error = answer.error().message });
    });
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
    const auto& [identifier, title, body, soundName, userInfo] = delivery.notification;
    const auto sound = desktopSound(soundName, m_sounds.folders);
    const bool serviceSounds = serviceHas("sound");
    // Escaped whatever the service says of itself: one that claims to read no markup may still take tags out of a body
    // and lose what stands between two signs, and a body must not smuggle a link or an image into one that reads it.
    const DesktopNotification notification { .replaces = m_slots[identifier].number,
        .identifier = identifier,
        .summary = title,
        .body = escaped(body),
        .sound = serviceSounds ? std::optional(sound) : std::nullopt,
        .isClickable = serviceHas("actions") };
    m_service.notify(notification, [this, delivery, sound, serviceSounds](auto answer) {
        if (answer && !serviceSounds)
            m_sounds.play(sound);
        delivered(delivery, std::move(answer));
    });
}

void NotificationCenterGtk::delivered(const Delivery& delivery, std::expected<std::uint32_t, NotificationError> answer)
{
    const auto& identifier = delivery.notification.identifier;
    auto& slot = m_slots[identifier];
    slot.awaitsAnswer = false;
    if (answer) {
        slot.number = *answer;
        slot.userInfo = delivery.notification.userInfo;
    }
    proceed(identifier);
    delivery.onEnd(answer ? std::expected<void, NotificationError> {} : std::unexpected(answer.error()));
}

bool NotificationCenterGtk::serviceHas(std::string_view capability) const
{
    return std::ranges::find(m_capabilityNames, capability) != m_capabilityNames.end();
}

void NotificationCenterGtk::whenCapabilitiesAreKnown(std::function<void()> action)
{
    if (m_capabilities == Capabilities::known)
        return action();
    m_waitingForCapabilities.push_back(std::move(action));
    if (std::exchange(m_capabilities, Capabilities::asked) == Capabilities::notAskedYet)
        m_service.askCapabilities([this](const auto& answer) { capabilitiesCame(answer); });
}

void NotificationCenterGtk::capabilitiesCame(const std::expected<std::vector<std::string>, NotificationError>& answer)
{
    m_capabilityNames = answer.value_or(std::vector<std::string> {});
    m_capabilities = Capabilities::known;
    for (const auto& action : std::exchange(m_waitingForCapabilities, {}))
        action();
    if (!answer)
        m_capabilities = Capabilities::notAskedYet; // The service may be started, or come to life, before the next one.
}

void NotificationCenterGtk::setResponseHandler(std::function<void(const NotificationResponse&)> handler)
{
    m_responseHandler = std::move(handler);
    tellResponses();
}

void NotificationCenterGtk::clicked(std::uint32_t number)
{
    const auto found
        = std::ranges::find_if(m_slots, [number](const auto& entry) { return entry.second.number == number; });
    if (number == 0 || found == m_slots.end())
        return;
    m_responses.push_back({ .identifier = found->first, .userInfo = found->second.userInfo });
    tellResponses();
}

// From the main loop, never from inside a call.
void NotificationCenterGtk::tellResponses()
{
    if (!m_responseHandler || m_responses.empty() || m_responseSource)
        return;
    m_responseSource = g_idle_add_once(
        [](gpointer data) {
            auto& self = *static_cast<NotificationCenterGtk*>(data);
            self.m_responseSource = 0;
            const auto handler = self.m_responseHandler;
            for (const auto& response :
                handler ? std::exchange(self.m_responses, {}) : std::vector<NotificationResponse> {})
                handler(response);
        },
        this);
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
    if (m_capabilities != Capabilities::asked)
        m_capabilities = Capabilities::notAskedYet;
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
