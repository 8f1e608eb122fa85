#include "mac/StatusItemMac.h"

#include "mac/MainMenuMac.h"
#include "mac/TextMac.h"

#include <utility>

namespace brevanta {

namespace {

NSImageName imageName(StatusImage image)
{
    switch (image) {
    case StatusImage::open:
        return @"brevanta-open";
    case StatusImage::block:
        return @"brevanta-block";
    case StatusImage::unknown:
        break;
    }
    return @"brevanta-unknown";
}

}

StatusItemMac::StatusItemMac(MainMenuMac& mainMenu)
    : m_mainMenu(mainMenu)
    , m_item([NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength])
{
    m_item.menu = m_menu.nativeMenu();
}

StatusItemMac::~StatusItemMac()
{
    m_mainMenu.setChoiceHandler({});
    [NSStatusBar.systemStatusBar removeStatusItem:m_item];
}

void StatusItemMac::show(const StatusItemContent& content)
{
    Face face { content.image, content.description };
    if (m_shownFace != face) {
        showFace(face);
        m_shownFace = std::move(face);
    }
    m_menu.show(content.menu);
    m_mainMenu.show(content.menu);
}

void StatusItemMac::showFace(const Face& face)
{
    NSString* const description = displayString(face.description);
    NSImage* const image = [NSImage imageNamed:imageName(face.image)];
    [image setTemplate:YES]; // `template` is a keyword of C++.
    image.accessibilityDescription = description;
    NSStatusBarButton* const button = m_item.button;
    button.image = image;
    button.title = image ? @"" : description;
    button.toolTip = description;
}

void StatusItemMac::setChoiceHandler(std::function<void(MenuItemId)> handler)
{
    m_mainMenu.setChoiceHandler(handler);
    m_menu.setChoiceHandler(std::move(handler));
}

StatusItemVisibility StatusItemMac::visibility() const { return StatusItemVisibility::visible; }

}
