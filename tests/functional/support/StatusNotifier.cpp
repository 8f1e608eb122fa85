#include "support/StatusNotifier.h"

namespace brevanta::functional {

static constexpr auto itemPath = "/org/ayatana/NotificationItem/brevanta";
static constexpr auto itemInterface = "org.kde.StatusNotifierItem";

StatusNotifier::StatusNotifier(const PrivateBus& bus, std::string owner)
    : m_bus(bus)
    , m_owner(std::move(owner))
    , m_changes(bus, itemInterface, itemPath)
{
}

std::expected<StatusNotifierContent, std::string> StatusNotifier::read() const
{
    const auto reply = m_bus.call(
        m_owner, itemPath, "org.freedesktop.DBus.Properties", "GetAll", g_variant_new("(s)", itemInterface));
    if (!reply)
        return std::unexpected(reply.error());
    const GLibPointer<GVariant> properties(g_variant_get_child_value(reply->get(), 0));
    const auto text = [&](const char* name) -> std::string {
        const char* value = nullptr;
        return g_variant_lookup(properties.get(), name, "&s", &value) ? value : "";
    };
    return StatusNotifierContent {
        .title = text("Title"), .iconName = text("IconName"), .iconDescription = text("IconAccessibleDesc")
    };
}

bool StatusNotifier::awaitDescription(const std::string& text, Milliseconds within)
{
    return m_changes.awaitCondition(
        [&] {
            const auto content = read();
            return content && content->iconDescription == text && content->title == text;
        },
        within);
}

}
