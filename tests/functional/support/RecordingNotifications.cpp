#include "support/RecordingNotifications.h"

#include <algorithm>
#include <filesystem>

namespace brevanta::functional {

static constexpr auto serviceName = "org.freedesktop.Notifications";
static constexpr auto servicePath = "/org/freedesktop/Notifications";
static constexpr std::uint32_t closedByCall = 3;

static constexpr auto introspection = R"(<node><interface name="org.freedesktop.Notifications">
<method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
<arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
<arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>
<method name="CloseNotification"><arg type="u" direction="in"/></method>
<method name="GetCapabilities"><arg type="as" direction="out"/></method>
<method name="GetServerInformation"><arg type="s" direction="out"/><arg type="s" direction="out"/>
<arg type="s" direction="out"/><arg type="s" direction="out"/></method>
<signal name="NotificationClosed"><arg type="u"/><arg type="u"/></signal>
<signal name="ActionInvoked"><arg type="u"/><arg type="s"/></signal>
</interface></node>)";

RecordingNotifications::RecordingNotifications(const PrivateBus& bus, std::vector<std::string> capabilities)
    : m_bus(bus)
    , m_capabilities(std::move(capabilities))
{
}

std::expected<std::unique_ptr<RecordingNotifications>, std::string> RecordingNotifications::start(
    const PrivateBus& bus, std::vector<std::string> capabilities)
{
    static constexpr GDBusInterfaceVTable handlers {
        .method_call =
            [](GDBusConnection*, const char*, const char*, const char*, const char* method, GVariant* arguments,
                GDBusMethodInvocation* invocation, gpointer recorder) {
                static_cast<RecordingNotifications*>(recorder)->handle(method, arguments, invocation);
            },
        .get_property = nullptr,
        .set_property = nullptr,
        .padding = {},
    };
    std::unique_ptr<RecordingNotifications> recorder(new RecordingNotifications(bus, std::move(capabilities)));
    const GLibPointer<GDBusNodeInfo> node(g_dbus_node_info_new_for_xml(introspection, nullptr));
    ErrorSlot error;
    recorder->m_registration = g_dbus_connection_register_object(
        bus.connection(), servicePath, node->interfaces[0], &handlers, recorder.get(), nullptr, error.address());
    if (!recorder->m_registration)
        return std::unexpected(error.message());
    static constexpr std::uint32_t doNotQueue = 4;
    const auto reply = bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", serviceName, doNotQueue));
    if (!reply)
        return std::unexpected(reply.error());
    static constexpr std::uint32_t becameOwner = 1;
    std::uint32_t result = 0;
    g_variant_get(reply->get(), "(u)", &result);
    if (result != becameOwner)
        return std::unexpected("another process takes the notifications already");
    return recorder;
}

RecordingNotifications::~RecordingNotifications()
{
    if (m_registration)
        g_dbus_connection_unregister_object(m_bus.connection(), m_registration);
}

void RecordingNotifications::handle(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation)
{
    GVariant* reply = nullptr;
    if (method == "Notify") {
        reply = g_variant_new("(u)", record(arguments));
    } else if (method == "CloseNotification") {
        std::uint32_t id = 0;
        g_variant_get(arguments, "(u)", &id);
        close(id);
    } else if (method == "GetCapabilities") {
        GVariantBuilder capabilities;
        g_variant_builder_init(&capabilities, G_VARIANT_TYPE_STRING_ARRAY);
        for (const auto& capability : m_capabilities)
            g_variant_builder_add(&capabilities, "s", capability.c_str());
        reply = g_variant_new("(as)", &capabilities);
    } else {
        reply = g_variant_new("(ssss)", "Recording notifications", "Brevanta", "1", "1.2");
    }
    g_dbus_method_invocation_return_value(invocation, reply);
}

std::uint32_t RecordingNotifications::record(GVariant* arguments)
{
    std::uint32_t replacedId = 0;
    const char* title = nullptr;
    const char* body = nullptr;
    GVariant* hintsReference = nullptr;
    g_variant_get(arguments, "(&su&s&s&s^a&s@a{sv}i)", nullptr, &replacedId, nullptr, &title, &body, nullptr,
        &hintsReference, nullptr);
    const GLibPointer<GVariant> hints(hintsReference);
    const char* identifier = "";
    g_variant_lookup(hints.get(), "x-brevanta-identifier", "&s", &identifier);
    const char* sound = "";
    if (!g_variant_lookup(hints.get(), "sound-file", "&s", &sound))
        g_variant_lookup(hints.get(), "sound-name", "&s", &sound);
    const auto id = replacedId ? replacedId : ++m_lastId;
    m_notifications.push_back({ .identifier = identifier,
        .title = title,
        .body = body,
        .sound = std::filesystem::path(sound).filename().string(),
        .id = id,
        .isClosed = false });
    return id;
}

void RecordingNotifications::close(std::uint32_t id)
{
    bool wasOpen = false;
    for (auto& notification : m_notifications) {
        wasOpen = wasOpen || (notification.id == id && !notification.isClosed);
        notification.isClosed = notification.isClosed || notification.id == id;
    }
    if (wasOpen) {
        g_dbus_connection_emit_signal(m_bus.connection(), nullptr, servicePath, serviceName, "NotificationClosed",
            g_variant_new("(uu)", id, closedByCall), nullptr);
    }
}

void RecordingNotifications::click(const std::string& identifier)
{
    const auto notifications = identified(identifier);
    if (notifications.empty())
        return;
    g_dbus_connection_emit_signal(m_bus.connection(), nullptr, servicePath, serviceName, "ActionInvoked",
        g_variant_new("(us)", notifications.back().id, "default"), nullptr);
}

std::vector<RecordedNotification> RecordingNotifications::identified(const std::string& identifier) const
{
    std::vector<RecordedNotification> result;
    std::ranges::copy_if(m_notifications, std::back_inserter(result),
        [&](const auto& notification) { return notification.identifier == identifier; });
    return result;
}

bool RecordingNotifications::await(const std::string& identifier, std::size_t count, Milliseconds within) const
{
    return awaitUntil([&] { return identified(identifier).size() >= count; }, within);
}

std::string RecordingNotifications::describe() const
{
    std::string text;
    for (const auto& notification : m_notifications)
        text += notification.identifier + ": " + notification.title + " / " + notification.body + '\n';
    return text.empty() ? "none" : text;
}

}
