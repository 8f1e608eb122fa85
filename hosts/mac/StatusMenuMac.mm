#include "mac/StatusMenuMac.h"

#include "mac/TextMac.h"

#include <utility>

using brevanta::MenuItemId;

@implementation BrevantaMenuTarget

// The menu already keeps the user from choosing such items; scripts can perform any item's action.
- (void)chooseItem:(NSMenuItem*)sender
{
    if (!sender.enabled || sender.hidden)
        return;
    const auto handler = self.choiceHandler;
    NSNumber* const identifier = sender.representedObject;
    if (handler)
        handler(static_cast<MenuItemId>(identifier.intValue));
}

@end

namespace brevanta {

void updateMenuItem(NSMenuItem* _Nullable native, const MenuItem& item)
{
    native.tag = item.tag;
    native.hidden = !item.visible;
    if (item.kind == MenuItemKind::separator)
        return;
    native.representedObject = [NSNumber numberWithInt:std::to_underlying(item.id)];
    native.title = displayString(item.title);
    native.keyEquivalent = displayString(item.keyEquivalent);
    native.enabled = item.enabled;
}

StatusMenuMac::StatusMenuMac()
    : m_nativeMenu([[NSMenu alloc] initWithTitle:@""])
    , m_target([[BrevantaMenuTarget alloc] init])
{
    m_nativeMenu.autoenablesItems = NO;
}

void StatusMenuMac::show(const Menu& menu)
{
    for (std::size_t i = 0; i < menu.items.size(); ++i) {
        const MenuItem& item = menu.items[i];
        const auto index = static_cast<NSInteger>(i);
        const bool known = i < m_shown.items.size();
        if (known && m_shown.items[i] == item)
            continue;
        if (known && m_shown.items[i].kind != item.kind)
            [m_nativeMenu removeItemAtIndex:index];
        if (!known || m_shown.items[i].kind != item.kind)
            [m_nativeMenu insertItem:createItem(item.kind) atIndex:index];
        updateMenuItem([m_nativeMenu itemAtIndex:index], item);
    }
    for (std::size_t i = m_shown.items.size(); i > menu.items.size(); --i)
        [m_nativeMenu removeItemAtIndex:static_cast<NSInteger>(i - 1)];
    m_shown = menu;
}

void StatusMenuMac::setChoiceHandler(std::function<void(MenuItemId)> handler)
{
    m_target.choiceHandler = std::move(handler);
}

NSMenuItem* StatusMenuMac::createItem(MenuItemKind kind) const
{
    if (kind == MenuItemKind::separator)
        return [NSMenuItem separatorItem];
    NSMenuItem* const item = [[NSMenuItem alloc] initWithTitle:@"" action:@selector(chooseItem:) keyEquivalent:@""];
    item.target = m_target;
    return item;
}

}
