#include "tour/DesktopWindows.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <span>

namespace brevanta::tour {

using functional::Milliseconds;

namespace {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

template <typename T> using Reply = std::unique_ptr<T, FreeReply>;

constexpr std::uint32_t longestProperty = 1024; // In units of four bytes.

}

bool Rectangle::intersects(const Rectangle& other) const
{
    return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
}

bool Rectangle::contains(const Rectangle& other) const
{
    return left <= other.left && top <= other.top && right >= other.right && bottom >= other.bottom;
}

Rectangle Rectangle::unitedWith(const Rectangle& other) const
{
    return { std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
        std::max(bottom, other.bottom) };
}

Rectangle Rectangle::grownBy(int margin) const
{
    return { left - margin, top - margin, right + margin, bottom + margin };
}

std::expected<std::unique_ptr<DesktopWindows>, std::string> DesktopWindows::connect(
    const functional::VirtualDisplay& display)
{
    std::unique_ptr<DesktopWindows> windows(new DesktopWindows);
    windows->m_connection.reset(xcb_connect(display.name().c_str(), nullptr));
    if (xcb_connection_has_error(windows->m_connection.get()))
        return std::unexpected("the X server " + display.name() + " cannot be connected to");
    return windows;
}

xcb_window_t DesktopWindows::rootWindow() const
{
    return xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data->root;
}

xcb_atom_t DesktopWindows::atom(const char* name) const
{
    auto* const connection = m_connection.get();
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t { XCB_ATOM_NONE };
}

// The elements of a property with elements of 32 bits.
std::vector<std::uint32_t> DesktopWindows::property(xcb_window_t window, const char* name) const
{
    auto* const connection = m_connection.get();
    const auto cookie = xcb_get_property(connection, 0, window, atom(name), XCB_ATOM_ANY, 0, longestProperty);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* const elements = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return { elements, elements + reply->value_len };
}

std::string DesktopWindows::title(xcb_window_t window) const
{
    auto* const connection = m_connection.get();
    const auto cookie = xcb_get_property(connection, 0, window, atom("_NET_WM_NAME"), XCB_ATOM_ANY, 0, longestProperty);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 8)
        return {};
    return { static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len };
}

WindowKind DesktopWindows::kind(xcb_window_t window) const
{
    const auto types = property(window, "_NET_WM_WINDOW_TYPE");
    const auto is = [&](const char* type) { return !types.empty() && types.front() == atom(type); };
    if (is("_NET_WM_WINDOW_TYPE_NORMAL"))
        return WindowKind::ordinary;
    if (is("_NET_WM_WINDOW_TYPE_DIALOG"))
        return WindowKind::dialog;
    if (is("_NET_WM_WINDOW_TYPE_POPUP_MENU") || is("_NET_WM_WINDOW_TYPE_DROPDOWN_MENU"))
        return WindowKind::menu;
    return is("_NET_WM_WINDOW_TYPE_NOTIFICATION") ? WindowKind::notice : WindowKind::other;
}

std::vector<xcb_window_t> DesktopWindows::candidates() const
{
    auto* const connection = m_connection.get();
    auto result = property(rootWindow(), "_NET_CLIENT_LIST");
    std::erase_if(result, [&](xcb_window_t window) {
        const auto types = property(window, "_NET_WM_WINDOW_TYPE");
        return !types.empty() && types.front() == atom("_NET_WM_WINDOW_TYPE_DOCK");
    });
    const Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, rootWindow()), nullptr));
    if (!tree)
        return result;
    const std::span children(
        xcb_query_tree_children(tree.get()), static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    for (const auto child : children) {
        const Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, child), nullptr));
        if (attributes && attributes->override_redirect && !property(child, "_NET_WM_WINDOW_TYPE").empty())
            result.push_back(child);
    }
    return result;
}

std::vector<DesktopWindow> DesktopWindows::all() const
{
    auto* const connection = m_connection.get();
    const auto* const root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const Rectangle screen { 0, 0, root->width_in_pixels, root->height_in_pixels };
    std::vector<DesktopWindow> result;
    // A window may go away between two requests; its reply is then null.
    for (const auto window : candidates()) {
        const Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window), nullptr));
        const Reply<xcb_get_geometry_reply_t> size(
            xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
        const Reply<xcb_translate_coordinates_reply_t> position(xcb_translate_coordinates_reply(
            connection, xcb_translate_coordinates(connection, window, rootWindow(), 0, 0), nullptr));
        if (!attributes || !size || !position || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
            continue;
        Rectangle place { position->dst_x, position->dst_y, position->dst_x + size->width,
            position->dst_y + size->height };
        const auto grow = [&](const std::vector<std::uint32_t>& extents, int sign) {
            if (extents.size() != 4)
                return;
            place.left -= sign * static_cast<int>(extents[0]);
            place.right += sign * static_cast<int>(extents[1]);
            place.top -= sign * static_cast<int>(extents[2]);
            place.bottom += sign * static_cast<int>(extents[3]);
        };
        grow(property(window, "_NET_FRAME_EXTENTS"), 1);
        grow(property(window, "_GTK_FRAME_EXTENTS"), -1); // A shadow that the program draws itself.
        // Beyond the screen window managers keep windows of their own.
        if (screen.intersects(place))
            result.push_back({ { window, title(window), size->width, size->height }, kind(window), place });
    }
    return result;
}

std::vector<DesktopWindow> DesktopWindows::titled(const std::string& title) const
{
    auto result = all();
    std::erase_if(result, [&](const DesktopWindow& window) { return window.window.title != title; });
    return result;
}

std::vector<DesktopWindow> DesktopWindows::ofKind(WindowKind kind) const
{
    auto result = all();
    std::erase_if(result, [&](const DesktopWindow& window) { return window.kind != kind; });
    return result;
}

bool DesktopWindows::awaitManager(Milliseconds within) const
{
    return functional::awaitByAsking(
        [this] { return !property(rootWindow(), "_NET_SUPPORTING_WM_CHECK").empty(); }, within);
}

bool DesktopWindows::awaitTitled(const std::string& title, std::size_t count, Milliseconds within) const
{
    return functional::awaitByAsking([&] { return titled(title).size() == count; }, within);
}

bool DesktopWindows::awaitKind(WindowKind kind, std::size_t count, Milliseconds within) const
{
    return functional::awaitByAsking([&] { return ofKind(kind).size() == count; }, within);
}

}
