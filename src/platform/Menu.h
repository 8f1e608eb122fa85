#pragma once

#include <string>
#include <vector>

namespace brevanta {

// Names an item within its menu; the core that computes the menu gives the values. 0 names no item.
enum class MenuItemId : int { none = 0 };

enum class MenuItemKind { command, separator };

// One line of a menu, as it is to be shown.
struct MenuItem {
    MenuItemKind kind { MenuItemKind::command };
    MenuItemId id { MenuItemId::none };
    int tag { 0 }; // The number by which the system's own tools find the item; 0 for none.
    std::string title; // Shown as it stands: '_' and '&' mark no mnemonic.
    std::string keyEquivalent; // One lower-case letter, chosen with the platform's command key; empty for none.
    bool enabled { true };
    bool visible { true };

    bool operator==(const MenuItem&) const = default;
};

struct Menu {
    std::vector<MenuItem> items;

    bool operator==(const Menu&) const = default;
};

}
