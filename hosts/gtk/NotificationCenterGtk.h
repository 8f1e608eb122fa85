#pragma once

#include "gtk/FreedesktopNotifications.h"
#include "platform/NotificationCenter.h"

#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <string_view>

namespace brevanta {

// Notifications by the desktop's own service. What was asked for one identifier is done in the order of asking, each
// after the answer to the one before; different identifiers do not wait for one another.
class NotificationCenterGtk final : public NotificationCenter {
public:
    using OnEnd = std::function<void(std::expected<void, NotificationError>)>;

    struct Sounds {
        std::vector<std::filesystem::path> folders; // Where sounds are looked for, in this order.
        std::function<void(const DesktopSound&)> play; // For a service that plays none itself.
    };

    NotificationCenterGtk(GDBusConnection* bus, DesktopIdentity identity, Sounds sounds);
    ~NotificationCenterGtk() override;
    NotificationCenterGtk(const NotificationCenterGtk&) = delete;
    NotificationCenterGtk& operator=(const NotificationCenterGtk&) = delete;

    // Ends with an error after five seconds of silence too. Nothing ends after this object is gone. The sound is heard
    // once: by the service if it plays sounds, otherwise by us when the service has taken the notification.
    void add(const Notification& notification, OnEnd onEnd) override;

    // Desktops ask nobody: authorized when a notification service answers, which the bus may start for it, and
    // notDetermined when none does within five seconds.
    void getAuthorization(std::function<void(NotificationAuthorization)> onEnd) override;
    void requestAuthorization(std::function<void(NotificationAuthorizationAnswer)> onEnd) override;

    void removeDelivered(const std::vector<std::string>& identifiers) override;

    // Only clicks on what this object has shown are told; the desktop starts nobody for a click.
    void setResponseHandler(std::function<void(const NotificationResponse&)> handler) override;

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
        NotificationUserInfo userInfo; // Of what is on screen.
        std::uint64_t lastUse { 0 };
        std::deque<Request> requests;
    };
    enum class Capabilities { notAskedYet, asked, known };

    [[nodiscard]] bool serviceHas(std::string_view capability) const;
    void enqueue(const std::string& identifier, Request request);
    void proceed(const std::string& identifier);
    void deliver(Delivery delivery);
    void send(const Delivery& delivery);
    void delivered(const Delivery& delivery, std::expected<std::uint32_t, NotificationError> answer);
    void whenCapabilitiesAreKnown(std::function<void()> action);
    void capabilitiesCame(const std::expected<std::vector<std::string>, NotificationError>& answer);
    void clicked(std::uint32_t number);
    void tellResponses();
    void forgetOnScreen(std::uint32_t number);
    void forgetService();
    void dropOldestSlots();

    std::map<std::string, Slot, std::less<>> m_slots;
    std::uint64_t m_uses { 0 };
    Capabilities m_capabilities { Capabilities::notAskedYet };
    std::vector<std::string> m_capabilityNames;
    std::vector<std::function<void()>> m_waitingForCapabilities;
    Sounds m_sounds;
    std::function<void(const NotificationResponse&)> m_responseHandler;
    std::vector<NotificationResponse> m_responses; // That nobody was told of yet.
    unsigned m_responseSource { 0 }; // The call to come that tells them.
    FreedesktopNotifications m_service; // Last, so that nothing is answered once the rest has gone.
};

}
