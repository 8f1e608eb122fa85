#include "gtk/WakeWatch.h"

#include <utility>

namespace brevanta {

WakeWatch::WakeWatch(std::function<void()> onWake)
    : m_onWake(std::move(onWake))
{
    connect();
}

WakeWatch::~WakeWatch()
{
    if (m_bus)
        g_dbus_connection_signal_unsubscribe(m_bus.get(), m_subscription);
}

void WakeWatch::connect()
{
    auto onConnected = m_life.guard([this](GObjectPtr<GDBusConnection>& bus) {
        m_bus = std::move(bus);
        m_subscription = g_dbus_connection_signal_subscribe(m_bus.get(), "org.freedesktop.login1",
            "org.freedesktop.login1.Manager", "PrepareForSleep", "/org/freedesktop/login1", nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE, signalled, this, nullptr);
    });
    // Never cancelled: the connection is the whole process's, and whoever else asks for it would be cancelled too.
    g_bus_get(G_BUS_TYPE_SYSTEM, nullptr, connected, new OnConnected(std::move(onConnected)));
}

void WakeWatch::connected(GObject*, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<OnConnected> onConnected(static_cast<OnConnected*>(data));
    GObjectPtr<GDBusConnection> bus(g_bus_get_finish(result, nullptr));
    if (!bus)
        return;
    // The end of the system bus would otherwise end this process.
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    (*onConnected)(bus);
}

void WakeWatch::signalled(
    GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments, gpointer data)
{
    if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(b)")))
        return;
    gboolean fallsAsleep = FALSE;
    g_variant_get(arguments, "(b)", &fallsAsleep);
    if (!fallsAsleep)
        static_cast<WakeWatch*>(data)->m_onWake();
}

}
