#pragma once

#include "mac/StatusMenuMac.h"

#import <AppKit/AppKit.h>

#include <vector>

NS_ASSUME_NONNULL_BEGIN

// Text views answer these through the responder chain; no public header declares them.
@protocol BrevantaUndoCommands
- (void)undo:(nullable id)sender;
- (void)redo:(nullable id)sender;
@end

// What those items call that stand in the status menu too.
@interface BrevantaMainMenuTarget : BrevantaMenuTarget <NSMenuItemValidation>

// What the status menu shows.
@property (nonatomic) brevanta::Menu statusMenu;

@end

namespace brevanta {

// The application's main menu: without the Edit menu's key equivalents nothing could be copied or pasted (documentation
// page "Human Interface Guidelines: The menu bar"). Some of its items are those of the status menu once more: their
// titles, keys and whether they can be chosen are that menu's, and they are hidden until it is known. Main thread only.
class MainMenuMac {
public:
    // Gives it to the application, which is not running yet.
    explicit MainMenuMac(NSApplication* application);

    MainMenuMac(const MainMenuMac&) = delete;
    MainMenuMac& operator=(const MainMenuMac&) = delete;

    void show(const Menu& statusMenu);
    void setChoiceHandler(std::function<void(MenuItemId)> handler);

private:
    struct SharedItem {
        MenuItemId id;
        NSMenuItem* native;
    };

    void addSharedItem(NSMenu* menu, MenuItemId id);
    void addApplicationMenu(NSMenu* mainMenu);
    void addFileMenu(NSMenu* mainMenu);
    void addViewMenu(NSMenu* mainMenu);

    BrevantaMainMenuTarget* m_target; // An item holds its target weakly.
    std::vector<SharedItem> m_sharedItems;
};

}

NS_ASSUME_NONNULL_END
