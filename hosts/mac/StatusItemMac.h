#pragma once

#include "platform/StatusItem.h"

#include "mac/StatusMenuMac.h"

#include <optional>

namespace brevanta {

class MainMenuMac;

// The item in the menu bar (documentation page NSStatusItem), with the bundle's images "brevanta-open",
// "brevanta-block" and "brevanta-unknown". An image that is missing is replaced by the description as title.
class StatusItemMac final : public StatusItem {
public:
    // The main menu, which repeats some of the item's menu, outlives this object.
    explicit StatusItemMac(MainMenuMac& mainMenu);
    ~StatusItemMac() override;

    StatusItemMac(const StatusItemMac&) = delete;
    StatusItemMac& operator=(const StatusItemMac&) = delete;

    void show(const StatusItemContent& content) override;
    void setChoiceHandler(std::function<void(MenuItemId)> handler) override;
    [[nodiscard]] StatusItemVisibility visibility() const override;

private:
    struct Face {
        StatusImage image;
        std::string description;

        bool operator==(const Face&) const = default;
    };

    void showFace(const Face& face);

    MainMenuMac& m_mainMenu;
    NSStatusItem* m_item;
    StatusMenuMac m_menu;
    std::optional<Face> m_shownFace;
};

}
