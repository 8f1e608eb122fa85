#include "gtk/RunningClient.h"

#include "gtk/GObjectPtr.h"
#include "platform/MainLoop.h"

#include <cstdlib>
#include <filesystem>
#include <gio/gio.h>
#include <memory>

namespace brevanta {

namespace {

constexpr double secondsToAnswer = 3;

// Where dbus-daemon(1) says that the session's bus is; empty where nobody says so.
std::string sessionBusAddress()
{
    const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address && *address)
        return std::string_view(address).starts_with("autolaunch:") ? std::string() : address;
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    std::error_code error;
    if (!folder || !std::filesystem::is_socket(std::filesystem::path(folder) / "bus", error))
        return {};
    const GLibPtr<char> path(g_dbus_address_escape_value((std::string(folder) + "/bus").c_str()));
    return std::string("unix:path=") + path.get();
}

struct Question {
    std::string name;
    std::function<void(std::optional<bool>)> onEnd;
    GObjectPtr<GCancellable> cancellable { g_cancellable_new() };
    std::unique_ptr<Timer> limit {};
    GObjectPtr<GDBusConnection> bus {};
};

void answered(GObject* bus, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<Question> question(static_cast<Question*>(data));
    const GLibPtr<GVariant> reply(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, nullptr));
    if (!reply)
        return question->onEnd(std::nullopt);
    gboolean hasOwner = FALSE;
    g_variant_get(reply.get(), "(b)", &hasOwner);
    question->onEnd(hasOwner != FALSE);
}

void connected(GObject*, GAsyncResult* result, gpointer data)
{
    std::unique_ptr<Question> question(static_cast<Question*>(data));
    question->bus.reset(g_dbus_connection_new_for_address_finish(result, nullptr));
    if (!question->bus)
        return question->onEnd(std::nullopt);
    auto* const bus = question->bus.get();
    auto* const cancellable = question->cancellable.get();
    auto* const arguments = g_variant_new("(s)", question->name.c_str());
    g_dbus_connection_call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
        arguments, G_VARIANT_TYPE("(b)"), G_DBUS_CALL_FLAGS_NONE, -1, cancellable, answered, question.release());
}

}

void findRunningClient(const std::string& busName, MainLoop& mainLoop, std::function<void(std::optional<bool>)> onEnd)
{
    const auto address = sessionBusAddress();
    if (address.empty())
        return mainLoop.post([onEnd = std::move(onEnd)] { onEnd(std::nullopt); });
    auto question = std::make_unique<Question>(Question { .name = busName, .onEnd = std::move(onEnd) });
    auto* const cancellable = question->cancellable.get();
    question->limit
        = mainLoop.startTimer(secondsToAnswer, TimerRepeat::once, [cancellable] { g_cancellable_cancel(cancellable); });
    g_dbus_connection_new_for_address(address.c_str(),
        static_cast<GDBusConnectionFlags>(
            G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, cancellable, connected, question.release());
}

}
