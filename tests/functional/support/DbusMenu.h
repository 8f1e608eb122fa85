#pragma once

#include "support/SignalWatch.h"

namespace brevanta::functional {

enum class MenuEntryKind { command, separator };

struct MenuEntry {
    int id { 0 };
    std::string label;
    bool isEnabled { true };
    bool isVisible { true };
    MenuEntryKind kind { MenuEntryKind::command };
};

using MenuEntries = std::vector<MenuEntry>;

// The status item's menu as a panel sees it: com.canonical.dbusmenu on the connection that owns the client's name.
class DbusMenu {
public:
    DbusMenu(const PrivateBus& bus, std::string owner);

    // Every entry in order, hidden ones too.
    [[nodiscard]] std::expected<MenuEntries, std::string> read() const;

    [[nodiscard]] bool awaitEntries(
        const std::function<bool(const MenuEntries&)>& condition, Milliseconds within = Milliseconds(10000));
    // A visible entry with exactly this label.
    [[nodiscard]] bool awaitLabel(const std::string& label, Milliseconds within = Milliseconds(10000));

    // Clicks the entry with this label, whether it is shown and enabled or not, as any program on the bus can.
    [[nodiscard]] std::expected<void, std::string> click(const std::string& label) const;
    [[nodiscard]] std::expected<void, std::string> clickEntry(int id) const;

private:
    const PrivateBus& m_bus;
    std::string m_owner;
    SignalWatch m_changes;
};

[[nodiscard]] const MenuEntry* findEntry(const MenuEntries& entries, const std::string& label);

// One line for each visible entry, disabled ones in brackets.
[[nodiscard]] std::string describeMenu(const MenuEntries& entries);

}
