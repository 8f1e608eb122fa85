#include "support/PrivateBus.h"

#include <fstream>
#include <optional>

namespace brevanta::functional {

static constexpr Milliseconds startTime { 10000 };

static constexpr std::string_view configuration = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN" "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <keep_umask/>
  <listen>unix:dir=@DIRECTORY@</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

std::expected<std::unique_ptr<PrivateBus>, std::string> PrivateBus::start()
{
    std::unique_ptr<PrivateBus> bus(new PrivateBus);
    if (!bus->m_directory.isValid())
        return std::unexpected("no temporary directory for the bus");
    const auto configurationPath = (bus->m_directory.path() / "bus.conf").string();
    std::string text(configuration);
    static constexpr std::string_view placeholder = "@DIRECTORY@";
    text.replace(text.find(placeholder), placeholder.size(), bus->m_directory.path().string());
    std::ofstream(configurationPath) << text;

    auto daemon = ChildProcess::start({
        .arguments
        = { "dbus-daemon", "--nofork", "--nopidfile", "--config-file=" + configurationPath, "--print-address=1" },
        .environment = neutralEnvironment(),
    });
    if (!daemon)
        return std::unexpected("the bus cannot be started: " + daemon.error());
    bus->m_daemon = std::move(*daemon);
    if (!bus->m_daemon->output().awaitText("\n", startTime))
        return std::unexpected("the bus gave no address: " + bus->m_daemon->errors().text());
    const auto& output = bus->m_daemon->output().text();
    bus->m_address = output.substr(0, output.find('\n'));

    ErrorSlot error;
    bus->m_connection.reset(g_dbus_connection_new_for_address_sync(bus->m_address.c_str(),
        combined(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT, G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, error.address()));
    if (!bus->m_connection)
        return std::unexpected("the bus cannot be reached: " + error.message());
    g_dbus_connection_set_exit_on_close(bus->m_connection.get(), FALSE);
    return bus;
}

namespace {

struct PendingCall {
    bool isDone { false };
    GLibPointer<GVariant> reply;
    std::string error;
};

}

static void finishCall(GObject* connection, GAsyncResult* result, gpointer data)
{
    // The one who waits may have given up; the shared pointer keeps the place for the answer until it comes.
    const std::unique_ptr<std::shared_ptr<PendingCall>> pending(static_cast<std::shared_ptr<PendingCall>*>(data));
    ErrorSlot error;
    (*pending)->reply.reset(g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, error.address()));
    if (!(*pending)->reply)
        (*pending)->error = error.message();
    (*pending)->isDone = true;
}

std::expected<GLibPointer<GVariant>, std::string> PrivateBus::call(const std::string& name, const std::string& path,
    const char* interface, const char* method, GVariant* arguments, Milliseconds within) const
{
    auto pending = std::make_shared<PendingCall>();
    g_dbus_connection_call(m_connection.get(), name.c_str(), path.c_str(), interface, method, arguments, nullptr,
        G_DBUS_CALL_FLAGS_NO_AUTO_START, static_cast<int>(within.count()), nullptr, finishCall,
        new std::shared_ptr<PendingCall>(pending));
    if (!awaitUntil([&] { return pending->isDone; }, within + Milliseconds(1000)))
        return std::unexpected(std::string(method) + " was not answered");
    if (!pending->reply)
        return std::unexpected(std::string(method) + ": " + pending->error);
    return std::move(pending->reply);
}

bool PrivateBus::hasOwner(const std::string& name) const
{
    const auto reply = call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
        g_variant_new("(s)", name.c_str()));
    gboolean hasOwner = FALSE;
    if (reply)
        g_variant_get(reply->get(), "(b)", &hasOwner);
    return hasOwner;
}

// The bus announces each change of ownership; what holds already is asked for once at the start.
static bool awaitOwnership(const PrivateBus& bus, const std::string& name, bool isOwned, Milliseconds within)
{
    bool isReached = false;
    struct Watch {
        bool* isReached;
        bool isOwned;
    } watch { &isReached, isOwned };
    const auto subscription = g_dbus_connection_signal_subscribe(
        bus.connection(), "org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged", "/org/freedesktop/DBus",
        name.c_str(), G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments, gpointer data) {
            const char* newOwner = nullptr;
            g_variant_get(arguments, "(&s&s&s)", nullptr, nullptr, &newOwner);
            const auto* told = static_cast<Watch*>(data);
            *told->isReached = (*newOwner != '\0') == told->isOwned;
        },
        &watch, nullptr);
    if (bus.hasOwner(name) == isOwned)
        isReached = true;
    const auto result = awaitUntil([&] { return isReached; }, within);
    g_dbus_connection_signal_unsubscribe(bus.connection(), subscription);
    return result;
}

bool PrivateBus::awaitOwner(const std::string& name, Milliseconds within) const
{
    return awaitOwnership(*this, name, true, within);
}

bool PrivateBus::awaitNoOwner(const std::string& name, Milliseconds within) const
{
    return awaitOwnership(*this, name, false, within);
}

}
