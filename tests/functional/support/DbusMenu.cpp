#include "support/DbusMenu.h"

#include <algorithm>

namespace brevanta::functional {

static constexpr auto menuPath = "/org/ayatana/NotificationItem/brevanta/Menu";
static constexpr auto menuInterface = "com.canonical.dbusmenu";

DbusMenu::DbusMenu(const PrivateBus& bus, std::string owner)
    : m_bus(bus)
    , m_owner(std::move(owner))
    , m_changes(bus, menuInterface, menuPath)
{
}

// A single underscore marks a mnemonic and two stand for one.
static std::string withoutMnemonics(std::string_view label)
{
    std::string text;
    bool isAfterMark = false;
    for (const auto character : label) {
        isAfterMark = character == '_' && !isAfterMark;
        if (!isAfterMark)
            text += character;
    }
    return text;
}

static std::string stringProperty(GVariant* properties, const char* name)
{
    const char* value = nullptr;
    return g_variant_lookup(properties, name, "&s", &value) ? value : "";
}

// Left out means true.
static bool booleanProperty(GVariant* properties, const char* name)
{
    gboolean value = TRUE;
    return !g_variant_lookup(properties, name, "b", &value) || value;
}

static void collectEntries(GVariant* node, MenuEntries& entries)
{
    GVariantIter iterator;
    const GLibPointer<GVariant> children(g_variant_get_child_value(node, 2));
    g_variant_iter_init(&iterator, children.get());
    while (GLibPointer<GVariant> boxed { g_variant_iter_next_value(&iterator) }) {
        const GLibPointer<GVariant> child(g_variant_get_variant(boxed.get()));
        const GLibPointer<GVariant> properties(g_variant_get_child_value(child.get(), 1));
        MenuEntry entry;
        g_variant_get_child(child.get(), 0, "i", &entry.id);
        entry.label = withoutMnemonics(stringProperty(properties.get(), "label"));
        entry.isEnabled = booleanProperty(properties.get(), "enabled");
        entry.isVisible = booleanProperty(properties.get(), "visible");
        if (stringProperty(properties.get(), "type") == "separator")
            entry.kind = MenuEntryKind::separator;
        entries.push_back(entry);
        collectEntries(child.get(), entries);
    }
}

std::expected<MenuEntries, std::string> DbusMenu::read() const
{
    static constexpr int allLevels = -1;
    const auto reply
        = m_bus.call(m_owner, menuPath, menuInterface, "GetLayout", g_variant_new("(iias)", 0, allLevels, nullptr));
    if (!reply)
        return std::unexpected(reply.error());
    if (!g_variant_is_of_type(reply->get(), G_VARIANT_TYPE("(u(ia{sv}av))")))
        return std::unexpected("GetLayout answered something else than a layout");
    const GLibPointer<GVariant> root(g_variant_get_child_value(reply->get(), 1));
    MenuEntries entries;
    collectEntries(root.get(), entries);
    return entries;
}

bool DbusMenu::awaitEntries(const std::function<bool(const MenuEntries&)>& condition, Milliseconds within)
{
    return m_changes.awaitCondition(
        [&] {
            const auto entries = read();
            return entries && condition(*entries);
        },
        within);
}

bool DbusMenu::awaitLabel(const std::string& label, Milliseconds within)
{
    return awaitEntries(
        [&](const MenuEntries& entries) {
            const auto* entry = findEntry(entries, label);
            return entry && entry->isVisible;
        },
        within);
}

std::expected<void, std::string> DbusMenu::click(const std::string& label) const
{
    const auto entries = read();
    if (!entries)
        return std::unexpected(entries.error());
    const auto* entry = findEntry(*entries, label);
    if (!entry)
        return std::unexpected("there is no entry \"" + label + "\" in the menu:\n" + describeMenu(*entries));
    return clickEntry(entry->id);
}

std::expected<void, std::string> DbusMenu::clickEntry(int id) const
{
    const auto reply = m_bus.call(
        m_owner, menuPath, menuInterface, "Event", g_variant_new("(isvu)", id, "clicked", g_variant_new_int32(0), 0U));
    if (!reply)
        return std::unexpected(reply.error());
    return {};
}

const MenuEntry* findEntry(const MenuEntries& entries, const std::string& label)
{
    const auto found = std::ranges::find(entries, label, &MenuEntry::label);
    return found == entries.end() ? nullptr : &*found;
}

std::string describeMenu(const MenuEntries& entries)
{
    std::string text;
    for (const auto& entry : entries) {
        if (!entry.isVisible)
            continue;
        if (entry.kind == MenuEntryKind::separator)
            text += "----------";
        else
            text += entry.isEnabled ? entry.label : "(" + entry.label + ")";
        text += '\n';
    }
    return text;
}

}
