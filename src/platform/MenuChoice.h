#pragma once

#include "platform/Menu.h"

#include <algorithm>
#include <string_view>

namespace brevanta {

// Whether the user can choose the item as it stands.
[[nodiscard]] inline bool canBeChosen(const MenuItem& item)
{
    return item.kind == MenuItemKind::command && item.enabled && item.visible;
}

// What the key chooses in the menu as it stands, wherever it is pressed; none where no item that can be chosen has it.
[[nodiscard]] inline MenuItemId choiceOfKey(const Menu& menu, std::string_view keyEquivalent)
{
    if (keyEquivalent.empty())
        return MenuItemId::none;
    const auto found = std::ranges::find_if(
        menu.items, [&](const MenuItem& item) { return item.keyEquivalent == keyEquivalent && canBeChosen(item); });
    return found == menu.items.end() ? MenuItemId::none : found->id;
}

}
