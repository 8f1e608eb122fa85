#pragma once

#include "gtk/GObjectPtr.h"
#include "gtk/NameOwnerWatch.h"
#include "platform/NotificationCenter.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <string>
#include <vector>

namespace brevanta {

// The arguments of Notify.
struct DesktopNotification {
    std::uint32_t replaces { 0 }; // 0 for a new one.
    std::string identifier; // Told as the hint "x-brevanta-identifier".
    std::string summary;
    std::string body; // Markup when the service has "body-markup" among its capabilities.
};

// How the application presents itself to the service.
struct DesktopIdentity {
    std::string name;
    std::string iconUri;
    std::string desktopEntry; // Without ".desktop".
};

// The service org.freedesktop.Notifications of a bus, by the Desktop Notifications Specification 1.2. Main thread only;
// nothing waits. Answers come from the main loop, each once, and none when this object is gone.
class FreedesktopNotifications {
public:
    template <typename Value> using Answer = std::function<void(std::expected<Value, NotificationError>)>;

    struct Observer {
        std::function<void(std::uint32_t)> closed; // A notification left the screen.
        std::function<void()> serviceLost; // What the service had shown, and its capabilities, count no more.
    };

    FreedesktopNotifications(GDBusConnection* bus, DesktopIdentity identity, Observer observer);
    ~FreedesktopNotifications();
    FreedesktopNotifications(const FreedesktopNotifications&) = delete;
    FreedesktopNotifications& operator=(const FreedesktopNotifications&) = delete;

    void askCapabilities(Answer<std::vector<std::string>> answer);

    // Answers with the number that the service gave the notification. Bytes that are not UTF-8 are replaced.
    void notify(const DesktopNotification& notification, Answer<std::uint32_t> answer);

    void close(std::uint32_t number);

private:
    using Reply = std::function<void(std::expected<GVariant*, NotificationError>)>;

    void call(const char* method, GVariant* arguments, const GVariantType* replyType, Reply reply);
    static void called(GObject* bus, GAsyncResult* result, gpointer reply);
    static void signalled(GDBusConnection*, const char* sender, const char* path, const char* interface,
        const char* signal, GVariant* arguments, gpointer self);

    GObjectPtr<GDBusConnection> m_bus;
    DesktopIdentity m_identity;
    Observer m_observer;
    GObjectPtr<GCancellable> m_ended;
    unsigned m_subscription { 0 };
    NameOwnerWatch m_watch;
};

}
