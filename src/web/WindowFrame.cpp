#include "web/WindowFrame.h"

#include "platform/UserDefaults.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace brevanta {

namespace {

constexpr auto sizeKey = "MainWindow.size";
constexpr auto positionKey = "MainWindow.position";
constexpr auto maximizedKey = "MainWindow.maximized";

// How much of the title bar has to be within a screen for the pointer to take hold of it.
constexpr std::int64_t reachableWidth = 100;
constexpr std::int64_t reachableHeight = 30;

// Both of them, each within an int.
std::optional<std::pair<int, int>> twoIntegers(const UserDefaults& defaults, std::string_view key)
{
    const auto stored = defaults.get(key);
    const auto* const numbers = stored ? std::get_if<std::vector<std::int64_t>>(&*stored) : nullptr;
    if (!numbers || numbers->size() != 2 || !std::in_range<int>(numbers->front())
        || !std::in_range<int>(numbers->back()))
        return std::nullopt;
    return std::pair(static_cast<int>(numbers->front()), static_cast<int>(numbers->back()));
}

bool suits(WindowSize size, std::span<const ScreenArea> screens)
{
    return size.width >= leastContentSize.width && size.height >= leastContentSize.height
        && std::ranges::any_of(screens, [&](const ScreenArea& screen) {
               return size.width <= screen.size.width && size.height <= screen.size.height;
           });
}

bool isReachable(WindowPosition position, WindowSize size, std::span<const ScreenArea> screens)
{
    return std::ranges::any_of(screens, [&](const ScreenArea& screen) {
        const std::int64_t x = std::int64_t { position.x } - screen.position.x;
        const std::int64_t y = std::int64_t { position.y } - screen.position.y;
        return x + size.width >= reachableWidth && x + reachableWidth <= screen.size.width && y >= 0
            && y + reachableHeight <= screen.size.height;
    });
}

void store(UserDefaults& defaults, std::string_view key, const DefaultsValue& value)
{
    if (defaults.get(key) != value)
        defaults.set(key, value);
}

}

WindowFrame rememberedFrame(
    const UserDefaults& defaults, std::span<const ScreenArea> screens, WindowSize sizeOfNewWindow)
{
    WindowFrame frame;
    if (const auto stored = twoIntegers(defaults, sizeKey)) {
        const WindowSize size { stored->first, stored->second };
        if (suits(size, screens))
            frame.size = size;
    }
    if (const auto stored = twoIntegers(defaults, positionKey)) {
        const WindowPosition position { stored->first, stored->second };
        if (isReachable(position, frame.size.value_or(sizeOfNewWindow), screens))
            frame.position = position;
    }
    if (defaults.get(maximizedKey) == DefaultsValue { true })
        frame.extent = WindowExtent::maximized;
    return frame;
}

void rememberFrame(UserDefaults& defaults, const WindowFrame& frame)
{
    if (frame.size)
        store(defaults, sizeKey, std::vector<std::int64_t> { frame.size->width, frame.size->height });
    if (frame.position)
        store(defaults, positionKey, std::vector<std::int64_t> { frame.position->x, frame.position->y });
    store(defaults, maximizedKey, frame.extent == WindowExtent::maximized);
}

}
