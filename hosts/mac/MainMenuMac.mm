#include "mac/MainMenuMac.h"

namespace brevanta {

namespace {

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

void addApplicationMenu(NSMenu* mainMenu)
{
    NSMenu* const menu = addMenu(mainMenu, @"Brevanta");
    addItem(menu, @"About Brevanta", @selector(orderFrontStandardAboutPanel:), @"");
    [menu addItem:[NSMenuItem separatorItem]];
    addItem(menu, @"Hide Brevanta", @selector(hide:), @"h");
    NSMenuItem* const hideOthers = addItem(menu, @"Hide Others", @selector(hideOtherApplications:), @"h");
    hideOthers.keyEquivalentModifierMask = NSEventModifierFlagCommand | NSEventModifierFlagOption;
    addItem(menu, @"Show All", @selector(unhideAllApplications:), @"");
    [menu addItem:[NSMenuItem separatorItem]];
    addItem(menu, @"Quit Brevanta", @selector(terminate:), @"q");
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
    addItem(menu, @"Delete", @selector(delete:), @"");
    addItem(menu, @"Select All", @selector(selectAll:), @"a");
}

NSMenu* addWindowMenu(NSMenu* mainMenu)
{
    NSMenu* const menu = addMenu(mainMenu, @"Window");
    addItem(menu, @"Close", @selector(performClose:), @"w");
    addItem(menu, @"Minimize", @selector(performMiniaturize:), @"m");
    addItem(menu, @"Zoom", @selector(performZoom:), @"");
    [menu addItem:[NSMenuItem separatorItem]];
    addItem(menu, @"Bring All to Front", @selector(arrangeInFront:), @"");
    return menu;
}

}

void installMainMenu(NSApplication* application)
{
    NSMenu* const mainMenu = [[NSMenu alloc] initWithTitle:@""];
    addApplicationMenu(mainMenu);
    addEditMenu(mainMenu);
    application.windowsMenu = addWindowMenu(mainMenu);
    application.mainMenu = mainMenu;
}

}
