#pragma once

#include "support/VirtualDisplay.h"

namespace brevanta::tour {

// In pixels from the screen's upper left corner.
struct Rectangle {
    int left { 0 };
    int top { 0 };
    int right { 0 }; // The first column beyond it.
    int bottom { 0 };

    [[nodiscard]] bool intersects(const Rectangle&) const;
    [[nodiscard]] bool contains(const Rectangle&) const;
    [[nodiscard]] Rectangle unitedWith(const Rectangle&) const;
    [[nodiscard]] Rectangle grownBy(int margin) const;
};

enum class WindowKind { ordinary, dialog, menu, notice, other };

struct DesktopWindow {
    functional::MappedWindow window;
    WindowKind kind { WindowKind::other };
    Rectangle place; // With the frame that the window manager has put around it, without a shadow.
};

// What can be seen on a display that has a window manager, in the terms of the Extended Window Manager Hints,
// https://specifications.freedesktop.org/wm-spec/: the windows that it manages, but for panels, and those that it does
// not, such as menus and notices.
class DesktopWindows {
public:
    [[nodiscard]] static std::expected<std::unique_ptr<DesktopWindows>, std::string> connect(
        const functional::VirtualDisplay&);

    [[nodiscard]] bool awaitManager(functional::Milliseconds within) const;

    [[nodiscard]] std::vector<DesktopWindow> all() const;
    [[nodiscard]] std::vector<DesktopWindow> titled(const std::string& title) const;
    [[nodiscard]] std::vector<DesktopWindow> ofKind(WindowKind) const;
    [[nodiscard]] bool awaitTitled(const std::string& title, std::size_t count, functional::Milliseconds within) const;
    [[nodiscard]] bool awaitKind(WindowKind, std::size_t count, functional::Milliseconds within) const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    DesktopWindows() = default;
    [[nodiscard]] xcb_window_t rootWindow() const;
    [[nodiscard]] xcb_atom_t atom(const char* name) const;
    [[nodiscard]] std::vector<std::uint32_t> property(xcb_window_t window, const char* name) const;
    [[nodiscard]] std::string title(xcb_window_t window) const;
    [[nodiscard]] WindowKind kind(xcb_window_t window) const;
    // Managed windows, and unmanaged ones that say what they are.
    [[nodiscard]] std::vector<xcb_window_t> candidates() const;

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
};

}
