#include "gtk/NameOwnerWatch.h"

#include <utility>

namespace brevanta {

namespace {

constexpr int askingMilliseconds = 500;

}

NameOwnerWatch::NameOwnerWatch(
    GDBusConnection* bus, std::string name, std::function<void()> onLost, std::function<void()> onGained)
    : m_bus(share(bus))
    , m_name(std::move(name))
    , m_onLost(std::move(onLost))
    , m_onGained(std::move(onGained))
    , m_watch(g_bus_watch_name_on_connection(
          bus, m_name.c_str(), G_BUS_NAME_WATCHER_FLAGS_NONE, nameAppeared, nameVanished, this, nullptr))
{
}

NameOwnerWatch::~NameOwnerWatch() { g_bus_unwatch_name(m_watch); }

bool NameOwnerWatch::hasOwner() const
{
    if (m_ownership == Ownership::unknown)
        m_ownership = askBus();
    return m_ownership == Ownership::owned;
}

void NameOwnerWatch::nameAppeared(GDBusConnection*, const char*, const char*, gpointer watch)
{
    auto& self = *static_cast<NameOwnerWatch*>(watch);
    self.m_ownership = Ownership::owned;
    if (self.m_onGained)
        self.m_onGained();
}

void NameOwnerWatch::nameVanished(GDBusConnection*, const char*, gpointer watch)
{
    auto& self = *static_cast<NameOwnerWatch*>(watch);
    self.m_ownership = Ownership::free;
    if (self.m_onLost)
        self.m_onLost();
}

NameOwnerWatch::Ownership NameOwnerWatch::askBus() const
{
    const GLibPtr<GVariant> reply(g_dbus_connection_call_sync(m_bus.get(), "org.freedesktop.DBus",
        "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner", g_variant_new("(s)", m_name.c_str()),
        G_VARIANT_TYPE("(b)"), G_DBUS_CALL_FLAGS_NONE, askingMilliseconds, nullptr, nullptr));
    gboolean owned = FALSE;
    if (reply)
        g_variant_get(reply.get(), "(b)", &owned);
    return owned ? Ownership::owned : Ownership::free;
}

}
