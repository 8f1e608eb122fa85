#pragma once

#include "platform/Menu.h"

#import <AppKit/AppKit.h>

#include <functional>

NS_ASSUME_NONNULL_BEGIN

// What the items of the status menu call.
@interface BrevantaMenuTarget : NSObject

// Copied before it is called, so that it may replace itself.
@property (nonatomic) std::function<void(brevanta::MenuItemId)> choiceHandler;

- (void)chooseItem:(NSMenuItem*)sender;

@end

namespace brevanta {

// Makes the native item, which calls a BrevantaMenuTarget, show this one.
void updateMenuItem(NSMenuItem* _Nullable native, const MenuItem& item);

// Shows a `Menu` value in an NSMenu (documentation pages NSMenu and NSMenuItem). Main thread only.
class StatusMenuMac {
public:
    StatusMenuMac();

    // Touches only the items that differ from those shown before.
    void show(const Menu& menu);
    void setChoiceHandler(std::function<void(MenuItemId)> handler);
    [[nodiscard]] NSMenu* nativeMenu() const { return m_nativeMenu; }

private:
    [[nodiscard]] NSMenuItem* createItem(MenuItemKind kind) const;

    NSMenu* m_nativeMenu;
    BrevantaMenuTarget* m_target; // An item holds its target weakly.
    Menu m_shown;
};

}

NS_ASSUME_NONNULL_END
