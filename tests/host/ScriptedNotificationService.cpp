#include "host/ScriptedNotificationService.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

constexpr auto serviceName = "org.freedesktop.Notifications";
constexpr auto servicePath = "/org/freedesktop/Notifications";
constexpr auto interfaces = R"(<node><interface name="org.freedesktop.Notifications">
        <method name="GetCapabilities"><arg type="as" direction="out"/></method>
        <method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/>
        <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
        <arg type="as" direction="in"/><arg type="a{sv}" direction="in"/><arg type="i" direction="in"/>
        <arg type="u" direction="out"/></method>
        <method name="CloseNotification"><arg type="u" direction="in"/></method></interface></node>)";

struct NodeDeleter {
    void operator()(GDBusNodeInfo* node) const { g_dbus_node_info_unref(node); }
};

}

TestBus::TestBus()
    : m_bus(g_test_dbus_new(G_TEST_DBUS_NONE))
{
    g_test_dbus_up(m_bus.get());
}

TestBus::~TestBus() { g_test_dbus_stop(m_bus.get()); }

GObjectPtr<GDBusConnection> TestBus::connect() const
{
    GObjectPtr<GDBusConnection> connection(
        g_dbus_connection_new_for_address_sync(g_test_dbus_get_bus_address(m_bus.get()),
            static_cast<GDBusConnectionFlags>(
                G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr));
    EXPECT_TRUE(connection);
    return connection;
}

ScriptedNotificationService::ScriptedNotificationService(const TestBus& bus, std::vector<const char*> capabilities)
    : m_connection(bus.connect())
    , m_capabilities(std::move(capabilities))
{
    static const GDBusInterfaceVTable handlers {
        [](GDBusConnection*, const char*, const char*, const char*, const char* method, GVariant* arguments,
            GDBusMethodInvocation* invocation,
            gpointer self) { static_cast<ScriptedNotificationService*>(self)->handle(method, arguments, invocation); },
        nullptr, nullptr, {}
    };
    const std::unique_ptr<GDBusNodeInfo, NodeDeleter> node(g_dbus_node_info_new_for_xml(interfaces, nullptr));
    EXPECT_NE(g_dbus_connection_register_object(
                  m_connection.get(), servicePath, node->interfaces[0], &handlers, this, nullptr, nullptr),
        0U);
    constexpr std::uint32_t doNotQueue = 4;
    const GLibPtr<GVariant> reply(g_dbus_connection_call_sync(m_connection.get(), "org.freedesktop.DBus",
        "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName", g_variant_new("(su)", serviceName, doNotQueue),
        nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
    EXPECT_TRUE(reply);
}

ScriptedNotificationService::~ScriptedNotificationService()
{
    g_dbus_connection_close_sync(m_connection.get(), nullptr, nullptr);
}

void ScriptedNotificationService::announceClosed(std::uint32_t number)
{
    constexpr std::uint32_t dismissedByTheUser = 2;
    g_dbus_connection_emit_signal(m_connection.get(), nullptr, servicePath, serviceName, "NotificationClosed",
        g_variant_new("(uu)", number, dismissedByTheUser), nullptr);
}

void ScriptedNotificationService::announceAction(std::uint32_t number, const char* action)
{
    g_dbus_connection_emit_signal(m_connection.get(), nullptr, servicePath, serviceName, "ActionInvoked",
        g_variant_new("(us)", number, action), nullptr);
}

void ScriptedNotificationService::answerHeld()
{
    for (const auto& reply : std::exchange(m_held, {}))
        reply();
}

void ScriptedNotificationService::handle(
    const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation)
{
    if (method == "GetCapabilities") {
        ++capabilityCalls;
        auto* const names = g_variant_new_strv(m_capabilities.data(), static_cast<gssize>(m_capabilities.size()));
        return g_dbus_method_invocation_return_value(invocation, g_variant_new("(@as)", names));
    }
    if (method == "CloseNotification") {
        std::uint32_t number = 0;
        g_variant_get(arguments, "(u)", &number);
        closeCalls.push_back(number);
        return g_dbus_method_invocation_return_value(invocation, nullptr);
    }
    record(arguments);
    if (answer == Answer::error)
        return g_dbus_method_invocation_return_dbus_error(invocation, "com.brevanta.Refused", "refused by the test");
    const auto replaces = notifyCalls.back().replaces;
    const auto number = replaces ? replaces : ++m_lastNumber;
    const auto reply
        = [invocation, number] { g_dbus_method_invocation_return_value(invocation, g_variant_new("(u)", number)); };
    if (answer == Answer::none)
        m_held.emplace_back(reply);
    else
        reply();
}

void ScriptedNotificationService::record(GVariant* arguments)
{
    const char* name = nullptr;
    const char* summary = nullptr;
    const char* body = nullptr;
    GVariant* actionsReference = nullptr;
    GVariant* hintsReference = nullptr;
    NotifyCall call;
    g_variant_get(arguments, "(&su&s&s&s@as@a{sv}i)", &name, &call.replaces, nullptr, &summary, &body,
        &actionsReference, &hintsReference, nullptr);
    const GLibPtr<GVariant> actions(actionsReference);
    for (gsize index = 0; index < g_variant_n_children(actions.get()); ++index) {
        const GLibPtr<GVariant> action(g_variant_get_child_value(actions.get(), index));
        call.actions.emplace_back(g_variant_get_string(action.get(), nullptr));
    }
    const GLibPtr<GVariant> hints(hintsReference);
    const char* identifier = "";
    const char* entry = "";
    g_variant_lookup(hints.get(), "x-brevanta-identifier", "&s", &identifier);
    g_variant_lookup(hints.get(), "desktop-entry", "&s", &entry);
    const char* soundFile = "";
    const char* soundName = "";
    g_variant_lookup(hints.get(), "sound-file", "&s", &soundFile);
    g_variant_lookup(hints.get(), "sound-name", "&s", &soundName);
    call.soundFileHint = soundFile;
    call.soundNameHint = soundName;
    call.applicationName = name;
    call.summary = summary;
    call.body = body;
    call.identifierHint = identifier;
    call.desktopEntryHint = entry;
    notifyCalls.push_back(std::move(call));
}

bool serveUntil(const std::function<bool()>& condition)
{
    constexpr unsigned patienceSeconds = 20;
    bool timeIsUp = false;
    const auto guard = g_timeout_add_seconds(
        patienceSeconds,
        [](gpointer up) -> gboolean {
            *static_cast<bool*>(up) = true;
            return G_SOURCE_CONTINUE;
        },
        &timeIsUp);
    while (!condition() && !timeIsUp)
        g_main_context_iteration(nullptr, TRUE);
    g_source_remove(guard);
    return condition();
}

}
