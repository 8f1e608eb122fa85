#include "gtk/FreedesktopNotifications.h"

#include "gtk/GLibText.h"

#include <utility>

namespace brevanta {

namespace {

constexpr auto serviceName = "org.freedesktop.Notifications";
constexpr auto servicePath = "/org/freedesktop/Notifications";
constexpr int answerMilliseconds = 5000;
constexpr int serviceDecidesExpiry = -1;

GVariant* text(const std::string& words) { return g_variant_new_string(validUtf8(words).c_str()); }

GVariant* hints(const DesktopNotification& notification, const DesktopIdentity& identity)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&builder, "{sv}", "desktop-entry", text(identity.desktopEntry));
    g_variant_builder_add(&builder, "{sv}", "x-brevanta-identifier", text(notification.identifier));
    return g_variant_builder_end(&builder);
}

GVariant* notifyArguments(const DesktopNotification& notification, const DesktopIdentity& identity)
{
    return g_variant_new("(@su@s@s@s@as@a{sv}i)", text(identity.name), notification.replaces, text(identity.iconUri),
        text(notification.summary), text(notification.body), g_variant_new_strv(nullptr, 0),
        hints(notification, identity), serviceDecidesExpiry);
}

}

FreedesktopNotifications::FreedesktopNotifications(GDBusConnection* bus, DesktopIdentity identity, Observer observer)
    : m_bus(share(bus))
    , m_identity(std::move(identity))
    , m_observer(std::move(observer))
    , m_ended(g_cancellable_new())
    , m_subscription(g_dbus_connection_signal_subscribe(bus, serviceName, serviceName, "NotificationClosed",
          servicePath, nullptr, G_DBUS_SIGNAL_FLAGS_NONE, signalled, this, nullptr))
    , m_watch(bus, serviceName, [this] { m_observer.serviceLost(); })
{
}

FreedesktopNotifications::~FreedesktopNotifications()
{
    g_cancellable_cancel(m_ended.get());
    g_dbus_connection_signal_unsubscribe(m_bus.get(), m_subscription);
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

void FreedesktopNotifications::call(const char* method, GVariant* arguments, const GVariantType* replyType, Reply reply)
{
    g_dbus_connection_call(m_bus.get(), serviceName, servicePath, serviceName, method, arguments, replyType,
        G_DBUS_CALL_FLAGS_NONE, answerMilliseconds, m_ended.get(), called, new Reply(std::move(reply)));
}

void FreedesktopNotifications::called(GObject* bus, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<Reply> reply(static_cast<Reply*>(data));
    GError* error = nullptr;
    const GLibPtr<GVariant> value(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error));
    if (value)
        return (*reply)(value.get());
    const GLibPtr<GError> owned(error);
    if (!g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED))
        (*reply)(std::unexpected(NotificationError { error->message }));
}

void FreedesktopNotifications::signalled(
    GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments, gpointer data)
{
    if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(uu)")))
        return;
    std::uint32_t number = 0;
    std::uint32_t reason = 0;
    g_variant_get(arguments, "(uu)", &number, &reason);
    static_cast<FreedesktopNotifications*>(data)->m_observer.closed(number);
}

}
