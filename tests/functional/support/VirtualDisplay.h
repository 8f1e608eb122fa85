#pragma once

#include "support/ChildProcess.h"

#include <cstdint>
#include <xcb/xcb.h>

namespace brevanta::functional {

struct MappedWindow {
    std::uint32_t id { 0 };
    std::string title;
    int width { 0 };
    int height { 0 };
};

struct DisplaySize {
    int width { 1360 };
    int height { 900 };
};

// An X server without a screen to look at and without a window manager.
class VirtualDisplay {
public:
    [[nodiscard]] static std::expected<std::unique_ptr<VirtualDisplay>, std::string> start(DisplaySize = {});

    // As the variable DISPLAY has it.
    [[nodiscard]] const std::string& name() const { return m_name; }

    // The top-level windows that can be seen: all, menus included, or those with this title.
    [[nodiscard]] std::vector<MappedWindow> windows() const;
    [[nodiscard]] std::vector<MappedWindow> windowsTitled(const std::string& title) const;
    [[nodiscard]] bool awaitWindows(const std::string& title, std::size_t count, Milliseconds within) const;

    // What a window manager does when the user presses the close button.
    void pressCloseButton(const MappedWindow& window) const;
    void moveWindow(const MappedWindow& window, int x, int y) const;

    // Gives the window the keyboard, types the text (letters and digits) and presses Return.
    [[nodiscard]] std::expected<void, std::string> typeInto(const MappedWindow& window, const std::string& text) const;
    // The same with one key, as xdotool(1) names it: "ctrl+w".
    [[nodiscard]] std::expected<void, std::string> press(const MappedWindow& window, const std::string& key) const;

    // Until the picture of the whole screen has not changed for a moment: nothing tells when programs have drawn.
    [[nodiscard]] bool awaitStillness(Milliseconds within) const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    VirtualDisplay() = default;
    [[nodiscard]] xcb_window_t rootWindow() const;
    [[nodiscard]] std::vector<std::uint8_t> picture() const;
    [[nodiscard]] std::expected<void, std::string> useKeyboard(
        const MappedWindow& window, const std::vector<std::string>& actions) const;
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;

    std::string m_name;
    std::unique_ptr<ChildProcess> m_server;
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
};

}
