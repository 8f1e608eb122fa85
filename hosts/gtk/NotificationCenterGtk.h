#pragma once

#include "gtk/FreedesktopNotifications.h"
#include "platform/NotificationCenter.h"

#include <deque>
#include <map>
#include <optional>

namespace brevanta {

// Notifications by the desktop's own service. What was asked for one identifier is done in the order of asking, each
// after the answer to the one before; different identifiers do not wait for one another.
class NotificationCenterGtk final : public NotificationCenter {
public:
    using OnEnd = std::function<void(std::expected<void, NotificationError>)>;

    NotificationCenterGtk(GDBusConnection* bus, DesktopIdentity identity);

    // Ends with an error after five seconds of silence too. Nothing ends after this object is gone.
    void add(const Notification& notification, OnEnd onEnd) override;

    // Desktops ask nobody: authorized when a notification service answers, which the bus may start for it, and
    // notDetermined when none does within five seconds.
    void getAuthorization(std::function<void(NotificationAuthorization)> onEnd) override;
    void requestAuthorization(std::function<void(NotificationAuthorization)> onEnd) override;

    void removeDelivered(const std::vector<std::string>& identifiers) override;

private:
    struct Delivery {
        Notification notification;
        OnEnd onEnd;
    };
    struct Request {
        std::optional<Delivery> delivery; // Without one the notification is to be taken away.
    };
    struct Slot {
        std::uint32_t number { 0 }; // What the service calls the notification on screen; 0 for none.
        bool awaitsAnswer { false };
        std::uint64_t lastUse { 0 };
        std::deque<Request> requests;
    };
    enum class BodyMarkup { notAskedYet, asked, yes, no };

    void enqueue(const std::string& identifier, Request request);
    void proceed(const std::string& identifier);
    void deliver(Delivery delivery);
    void send(const Delivery& delivery);
    void delivered(const Delivery& delivery, std::expected<std::uint32_t, NotificationError> answer);
    void whenCapabilitiesAreKnown(std::function<void()> action);
    void capabilitiesCame(const std::expected<std::vector<std::string>, NotificationError>& answer);
    void forgetOnScreen(std::uint32_t number);
    void forgetService();
    void dropOldestSlots();

    std::map<std::string, Slot, std::less<>> m_slots;
    std::uint64_t m_uses { 0 };
    BodyMarkup m_bodyMarkup { BodyMarkup::notAskedYet };
    std::vector<std::function<void()>> m_waitingForCapabilities;
    FreedesktopNotifications m_service; // Last, so that nothing is answered once the rest has gone.
};

}
