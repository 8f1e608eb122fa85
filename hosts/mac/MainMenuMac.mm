#include "mac/MainMenuMac.h"

#include "menubar/StatusMenu.h"
#include "platform/MenuChoice.h"

#include <algorithm>
#include <utility>

using brevanta::MenuItem;
using brevanta::MenuItemId;

@implementation BrevantaMainMenuTarget

- (BOOL)validateMenuItem:(NSMenuItem*)menuItem
{
    NSNumber* const identifier = menuItem.representedObject;
    const auto id = static_cast<MenuItemId>(identifier.intValue);
    const auto menu = self.statusMenu;
    return std::ranges::any_of(
        menu.items, [id](const MenuItem& item) { return item.id == id && brevanta::canBeChosen(item); });
}

@end

namespace brevanta {

namespace {

MenuItemId itemOf(MenuCommand command) { return static_cast<MenuItemId>(command); }

// The actions have no target: the first object of the responder chain that knows them takes them.
NSMenuItem* addItem(NSMenu* menu, NSString* title, SEL action, NSString* keyEquivalent)
{
    return [menu addItemWithTitle:title action:action keyEquivalent:keyEquivalent];
}

NSMenu* addMenu(NSMenu* mainMenu, NSString* title)
{
    NSMenu* const menu = [[NSMenu alloc] initWithTitle:title];
    NSMenuItem* const item = [mainMenu addItemWithTitle:title action:nil keyEquivalent:@""];
    item.submenu = menu;
    return menu;
}

void addEditMenu(NSMenu* mainMenu)
{
    NSMenu* const menu = addMenu(mainMenu, @"Edit");
    addItem(menu, @"Undo", @selector(undo:), @"z");
    addItem(menu, @"Redo", @selector(redo:), @"Z");
    [menu addItem:[NSMenuItem separatorItem]];
    addItem(menu, @"Cut", @selector(cut:), @"x");
    addItem(menu, @"Copy", @selector(copy:), @"c");
    addItem(menu, @"Paste", @selector(paste:), @"v");
    NSMenuItem* const pastePlain = addItem(menu, @"Paste and Match Style", @selector(pasteAsPlainText:), @"V");
    pastePlain.keyEquivalentModifierMask = NSEventModifierFlagCommand | NSEventModifierFlagOption;
    addItem(menu, @"Delete", @selector(delete:), @"");
    addItem(menu, @"Select All", @selector(selectAll:), @"a");
}

NSMenu* addWindowMenu(NSMenu* mainMenu)
{
    NSMenu* const menu = addMenu(mainMenu, @"Window");
    addItem(menu, @"Minimize", @selector(performMiniaturize:), @"m");
    addItem(menu, @"Zoom", @selector(performZoom:), @"");
    [menu addItem:[NSMenuItem separatorItem]];
    addItem(menu, @"Bring All to Front", @selector(arrangeInFront:), @"");
    return menu;
}

}

MainMenuMac::MainMenuMac(NSApplication* application)
    : m_target([[BrevantaMainMenuTarget alloc] init])
{
    NSMenu* const mainMenu = [[NSMenu alloc] initWithTitle:@""];
    addApplicationMenu(mainMenu);
    addFileMenu(mainMenu);
    addEditMenu(mainMenu);
    addViewMenu(mainMenu);
    application.windowsMenu = addWindowMenu(mainMenu);
    application.mainMenu = mainMenu;
}

void MainMenuMac::show(const Menu& statusMenu)
{
    m_target.statusMenu = statusMenu;
    for (const auto& shared : m_sharedItems) {
        const auto item = std::ranges::find(statusMenu.items, shared.id, &MenuItem::id);
        if (item == statusMenu.items.end())
            shared.native.hidden = YES;
        else
            updateMenuItem(shared.native, *item);
    }
}

void MainMenuMac::setChoiceHandler(std::function<void(MenuItemId)> handler)
{
    m_target.choiceHandler = std::move(handler);
}

void MainMenuMac::addSharedItem(NSMenu* menu, MenuItemId id)
{
    NSMenuItem* const item = addItem(menu, @"", @selector(chooseItem:), @"");
    item.target = m_target;
    item.hidden = YES;
    m_sharedItems.push_back({ id, item });
}

void MainMenuMac::addApplicationMenu(NSMenu* mainMenu)
{
    NSMenu* const menu = addMenu(mainMenu, @"Brevanta");
    addItem(menu, @"About Brevanta", @selector(orderFrontStandardAboutPanel:), @"");
    addSharedItem(menu, itemOf(MenuCommand::checkForUpdates));
    [menu addItem:[NSMenuItem separatorItem]];
    addItem(menu, @"Hide Brevanta", @selector(hide:), @"h");
    NSMenuItem* const hideOthers = addItem(menu, @"Hide Others", @selector(hideOtherApplications:), @"h");
    hideOthers.keyEquivalentModifierMask = NSEventModifierFlagCommand | NSEventModifierFlagOption;
    addItem(menu, @"Show All", @selector(unhideAllApplications:), @"");
    [menu addItem:[NSMenuItem separatorItem]];
    // Asks the application's delegate, as the status menu's Quit does.
    addItem(menu, @"Quit Brevanta", @selector(terminate:), @"q");
}

void MainMenuMac::addFileMenu(NSMenu* mainMenu)
{
    NSMenu* const menu = addMenu(mainMenu, @"File");
    addSharedItem(menu, itemOf(MenuCommand::openWindow));
    [menu addItem:[NSMenuItem separatorItem]];
    addItem(menu, @"Close", @selector(performClose:), @"w");
}

void MainMenuMac::addViewMenu(NSMenu* mainMenu)
{
    NSMenu* const menu = addMenu(mainMenu, @"View");
    addSharedItem(menu, itemOf(MenuCommand::reloadWindow));
    [menu addItem:[NSMenuItem separatorItem]];
    NSMenuItem* const fullScreen = addItem(menu, @"Enter Full Screen", @selector(toggleFullScreen:), @"f");
    fullScreen.keyEquivalentModifierMask = NSEventModifierFlagCommand | NSEventModifierFlagControl;
}

}
