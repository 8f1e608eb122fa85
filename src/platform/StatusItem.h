#pragma once

#include "platform/Menu.h"

#include <functional>
#include <string>

namespace brevanta {

enum class StatusImage { open, block, unknown };

// All that the status item shows, as one value.
struct StatusItemContent {
    StatusImage image { StatusImage::unknown };
    std::string description; // The image's accessible description, and the tooltip or title of the item.
    Menu menu;

    bool operator==(const StatusItemContent&) const = default;
};

// Whether there is a bar on which the item can be seen at all.
enum class StatusItemVisibility { visible, noHost };

// The application's item in the menu bar. Main thread only.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    // Shows the content. Only what differs from the content shown before is touched, so that an open menu stays open.
    virtual void show(const StatusItemContent& content) = 0;

    // Called on the main thread with the item that the user chose, never from inside `show`; items that are disabled,
    // hidden or separators are never reported. Replaces the handler given before.
    virtual void setChoiceHandler(std::function<void(MenuItemId)> handler) = 0;

    [[nodiscard]] virtual StatusItemVisibility visibility() const = 0;
};

}
