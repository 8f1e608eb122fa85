#pragma once

#include "gtk/DesktopSound.h"
#include "gtk/GObjectPtr.h"
#include "gtk/NameOwnerWatch.h"
#include "platform/NotificationCenter.h"

#include <cstdint>
#include <deque>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

// The arguments of Notify.
struct DesktopNotification {
    std::uint32_t replaces { 0 }; // 0 for a new one.
    std::string identifier; // Told as the hint "x-brevanta-identifier".
    std::string summary;
    std::string body; // Markup, whether the service claims to read it or not.
    std::optional<DesktopSound> sound; // What the service is to play, as the hint "sound-file" or "sound-name".
    bool isClickable { false }; // Has the action "default", which a click on the notification invokes.
};

// How the application presents itself to the service.
struct DesktopIdentity {
    std::string name;
    std::string iconUri;
    std::string desktopEntry; // Without ".desktop".
};

// The service org.freedesktop.Notifications of a bus, by the Desktop Notifications Specification 1.2. Main thread only;
// nothing waits. Answers come from the main loop, each once, and none when this object is gone. Calls are made in the
// order of asking, a few at a time: a bus limits how many may await an answer, and fails those beyond it.
class FreedesktopNotifications {
public:
    template <typename Value> using Answer = std::function<void(std::expected<Value, NotificationError>)>;

    struct Observer {
        std::function<void(std::uint32_t)> closed; // A notification left the screen.
        std::function<void(std::uint32_t)> clicked; // The user chose its default action.
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

    struct Call {
        const char* method; // As all of this but the reply, of static storage or owned.
        GLibPtr<GVariant> arguments; // Null for none.
        const GVariantType* replyType;
        Reply reply;
    };
    struct Underway;

    void call(const char* method, GVariant* arguments, const GVariantType* replyType, Reply reply);
    void makeCalls();
    static void called(GObject* bus, GAsyncResult* result, gpointer underway);
    unsigned subscribe(const char* signal, GDBusSignalCallback callback);
    static void closed(GDBusConnection*, const char* sender, const char* path, const char* interface,
        const char* signal, GVariant* arguments, gpointer self);
    static void actionInvoked(GDBusConnection*, const char* sender, const char* path, const char* interface,
        const char* signal, GVariant* arguments, gpointer self);

    GObjectPtr<GDBusConnection> m_bus;
    DesktopIdentity m_identity;
    Observer m_observer;
    GObjectPtr<GCancellable> m_ended;
    std::deque<Call> m_calls; // Those that wait for their turn.
    unsigned m_callsUnderway { 0 };
    unsigned m_closedSubscription { 0 };
    unsigned m_actionSubscription { 0 };
    NameOwnerWatch m_watch;
};

}
