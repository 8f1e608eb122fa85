#include "tour/NotificationMonitor.h"

#include <algorithm>
#include <ranges>

namespace brevanta::tour {

using functional::ErrorSlot;
using functional::GLibPointer;
using functional::PrivateBus;

std::expected<std::unique_ptr<NotificationMonitor>, std::string> NotificationMonitor::start(const PrivateBus& bus)
{
    std::unique_ptr<NotificationMonitor> monitor(new NotificationMonitor);
    ErrorSlot error;
    monitor->m_connection.reset(g_dbus_connection_new_for_address_sync(bus.address().c_str(),
        functional::combined(
            G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT, G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, error.address()));
    if (!monitor->m_connection)
        return std::unexpected(error.message());
    auto* const connection = monitor->m_connection.get();
    g_dbus_connection_set_exit_on_close(connection, FALSE);
    monitor->m_filter = g_dbus_connection_add_filter(
        connection,
        [](GDBusConnection*, GDBusMessage* message, gboolean isIncoming, gpointer data) -> GDBusMessage* {
            if (!isIncoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL)
                return message;
            // A monitor must not answer what it overhears.
            static_cast<NotificationMonitor*>(data)->note(message);
            g_object_unref(message);
            return nullptr;
        },
        monitor.get(), nullptr);
    const char* rules[] = { "type='method_call',interface='org.freedesktop.Notifications',member='Notify'" };
    const GLibPointer<GVariant> reply(g_dbus_connection_call_sync(connection, "org.freedesktop.DBus",
        "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring", "BecomeMonitor",
        g_variant_new("(@asu)", g_variant_new_strv(rules, std::size(rules)), 0U), nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
        nullptr, error.address()));
    if (!reply)
        return std::unexpected(error.message());
    return monitor;
}

NotificationMonitor::~NotificationMonitor()
{
    if (!m_connection)
        return;
    g_dbus_connection_remove_filter(m_connection.get(), m_filter);
    // Waits for a filter that is still at work.
    g_dbus_connection_close_sync(m_connection.get(), nullptr, nullptr);
}

void NotificationMonitor::note(GDBusMessage* message)
{
    auto* const arguments = g_dbus_message_get_body(message);
    if (!arguments || !g_variant_is_of_type(arguments, G_VARIANT_TYPE("(susssasa{sv}i)")))
        return;
    const char* title = nullptr;
    const char* body = nullptr;
    g_variant_get_child(arguments, 3, "&s", &title);
    g_variant_get_child(arguments, 4, "&s", &body);
    const GLibPointer<GVariant> hints(g_variant_get_child_value(arguments, 6));
    const char* identifier = "";
    g_variant_lookup(hints.get(), "x-brevanta-identifier", "&s", &identifier);
    const std::scoped_lock lock(m_mutex);
    m_notifications.push_back({ identifier, title, body });
    g_main_context_wakeup(nullptr);
}

std::optional<SeenNotification> NotificationMonitor::await(
    const std::string& identifier, functional::Milliseconds within)
{
    std::optional<SeenNotification> result;
    (void)functional::awaitByAsking(
        [&] {
            const std::scoped_lock lock(m_mutex);
            for (const auto& notification : m_notifications | std::views::reverse) {
                if (!result && notification.identifier == identifier)
                    result = notification;
            }
            return result.has_value();
        },
        within);
    return result;
}

std::size_t NotificationMonitor::count()
{
    const std::scoped_lock lock(m_mutex);
    return m_notifications.size();
}

}
