#include "gtk/FreedesktopNotifications.h"

#include "gtk/GLibText.h"

#include <iterator>
#include <string_view>
#include <utility>

namespace brevanta {

namespace {

constexpr auto serviceName = "org.freedesktop.Notifications";
constexpr auto servicePath = "/org/freedesktop/Notifications";
constexpr auto defaultActionName = "default";
constexpr int answerMilliseconds = 5000;
constexpr int serviceDecidesExpiry = -1;
constexpr unsigned mostCallsUnderway = 16;

GVariant* text(const std::string& words) { return g_variant_new_string(validUtf8(words).c_str()); }

GVariant* hints(const DesktopNotification& notification, const DesktopIdentity& identity)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&builder, "{sv}", "desktop-entry", text(identity.desktopEntry));
    g_variant_builder_add(&builder, "{sv}", "x-brevanta-identifier", text(notification.identifier));
    if (notification.sound && notification.sound->file.empty())
        g_variant_builder_add(&builder, "{sv}", "sound-name", text(themeSoundOfNotifications));
    else if (notification.sound)
        g_variant_builder_add(&builder, "{sv}", "sound-file", text(notification.sound->file.string()));
    return g_variant_builder_end(&builder);
}

// Pairs of an action's name and its words; the default one is a click on the notification itself.
GVariant* actions(const DesktopNotification& notification)
{
    const char* const defaultAction[] = { defaultActionName, "Open" };
    return notification.isClickable ? g_variant_new_strv(defaultAction, std::size(defaultAction))
                                    : g_variant_new_strv(nullptr, 0);
}

GVariant* notifyArguments(const DesktopNotification& notification, const DesktopIdentity& identity)
{
    return g_variant_new("(@su@s@s@s@as@a{sv}i)", text(identity.name), notification.replaces, text(identity.iconUri),
        text(notification.summary), text(notification.body), actions(notification), hints(notification, identity),
        serviceDecidesExpiry);
}

}

FreedesktopNotifications::FreedesktopNotifications(GDBusConnection* bus, DesktopIdentity identity, Observer observer)
    : m_bus(share(bus))
    , m_identity(std::move(identity))
    , m_observer(std::move(observer))
    , m_ended(g_cancellable_new())
    , m_closedSubscription(subscribe("NotificationClosed", closed))
    , m_actionSubscription(subscribe("ActionInvoked", actionInvoked))
    , m_watch(bus, serviceName, [this] { m_observer.serviceLost(); })
{
}

FreedesktopNotifications::~FreedesktopNotifications()
{
    g_cancellable_cancel(m_ended.get());
    g_dbus_connection_signal_unsubscribe(m_bus.get(), m_closedSubscription);
    g_dbus_connection_signal_unsubscribe(m_bus.get(), m_actionSubscription);
}

void FreedesktopNotifications::askCapabilities(Answer<std::vector<std::string>> answer)
{
    call("GetCapabilities", nullptr, G_VARIANT_TYPE("(as)"),
        [answer = std::move(answer)](std::expected<GVariant*, NotificationError> reply) {
            if (!reply)
                return answer(std::unexpected(reply.error()));
            const GLibPtr<GVariant> list(g_variant_get_child_value(*reply, 0));
            gsize count = 0;
            const GLibPtr<const char*> names(g_variant_get_strv(list.get(), &count));
            answer(std::vector<std::string>(names.get(), names.get() + count));
        });
}

void FreedesktopNotifications::notify(const DesktopNotification& notification, Answer<std::uint32_t> answer)
{
    call("Notify", notifyArguments(notification, m_identity), G_VARIANT_TYPE("(u)"),
        [answer = std::move(answer)](std::expected<GVariant*, NotificationError> reply) {
            if (!reply)
                return answer(std::unexpected(reply.error()));
            std::uint32_t number = 0;
            g_variant_get(*reply, "(u)", &number);
            answer(number);
        });
}

void FreedesktopNotifications::close(std::uint32_t number)
{
    call("CloseNotification", g_variant_new("(u)", number), nullptr, [](auto) { });
}

struct FreedesktopNotifications::Underway {
    FreedesktopNotifications* notifications; // Gone when the call was cancelled.
    Reply reply;
};

void FreedesktopNotifications::call(const char* method, GVariant* arguments, const GVariantType* replyType, Reply reply)
{
    m_calls.push_back({ .method = method,
        .arguments = GLibPtr<GVariant>(arguments ? g_variant_ref_sink(arguments) : nullptr),
        .replyType = replyType,
        .reply = std::move(reply) });
    makeCalls();
}

void FreedesktopNotifications::makeCalls()
{
    while (m_callsUnderway < mostCallsUnderway && !m_calls.empty()) {
        auto next = std::move(m_calls.front());
        m_calls.pop_front();
        ++m_callsUnderway;
        g_dbus_connection_call(m_bus.get(), serviceName, servicePath, serviceName, next.method, next.arguments.get(),
            next.replyType, G_DBUS_CALL_FLAGS_NONE, answerMilliseconds, m_ended.get(), called,
            new Underway { this, std::move(next.reply) });
    }
}

void FreedesktopNotifications::called(GObject* bus, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<Underway> underway(static_cast<Underway*>(data));
    GError* error = nullptr;
    const GLibPtr<GVariant> value(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error));
    const GLibPtr<GError> owned(error);
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED))
        return;
    // Before the reply, which may be the end of this object.
    --underway->notifications->m_callsUnderway;
    underway->notifications->makeCalls();
    if (value)
        underway->reply(value.get());
    else
        underway->reply(std::unexpected(NotificationError { error->message }));
}

unsigned FreedesktopNotifications::subscribe(const char* signal, GDBusSignalCallback callback)
{
    return g_dbus_connection_signal_subscribe(m_bus.get(), serviceName, serviceName, signal, servicePath, nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE, callback, this, nullptr);
}

void FreedesktopNotifications::closed(
    GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments, gpointer data)
{
    if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(uu)")))
        return;
    std::uint32_t number = 0;
    std::uint32_t reason = 0;
    g_variant_get(arguments, "(uu)", &number, &reason);
    static_cast<FreedesktopNotifications*>(data)->m_observer.closed(number);
}

void FreedesktopNotifications::actionInvoked(
    GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments, gpointer data)
{
    if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(us)")))
        return;
    std::uint32_t number = 0;
    const char* action = nullptr;
    g_variant_get(arguments, "(u&s)", &number, &action);
    if (std::string_view(action) == defaultActionName)
        static_cast<FreedesktopNotifications*>(data)->m_observer.clicked(number);
}

}
