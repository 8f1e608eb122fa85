#pragma once

#include <optional>
#include <span>

namespace brevanta {

class UserDefaults;

struct WindowSize {
    int width { 0 }; // Of the content; points on the Mac, logical pixels elsewhere, as all of these.
    int height { 0 };

    bool operator==(const WindowSize&) const = default;
};

// Of the upper left corner, from that of the screens.
struct WindowPosition {
    int x { 0 };
    int y { 0 };

    bool operator==(const WindowPosition&) const = default;
};

// The part of one screen that windows may use.
struct ScreenArea {
    WindowPosition position;
    WindowSize size;
};

// Smaller than this the page's columns and the placeholder's words have no room.
inline constexpr WindowSize leastContentSize { .width = 480, .height = 360 };

enum class WindowExtent { free, maximized };

struct WindowFrame {
    std::optional<WindowSize> size; // Nothing: the size of a new window.
    std::optional<WindowPosition> position; // Nothing: wherever the system puts new windows.
    WindowExtent extent { WindowExtent::free };

    bool operator==(const WindowFrame&) const = default;
};

// For hosts whose system does not do it: the frame that was remembered, as far as it still suits. A value of another
// shape is ignored, and so is a size that is too small or fits on no screen, and a position from which the title bar
// could not be reached. Main thread only, as the other.
[[nodiscard]] WindowFrame rememberedFrame(
    const UserDefaults& defaults, std::span<const ScreenArea> screens, WindowSize sizeOfNewWindow);

// What has no value leaves what was remembered before. Writes nothing that is stored already.
void rememberFrame(UserDefaults& defaults, const WindowFrame& frame);

}
