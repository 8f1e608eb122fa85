#include "support/VirtualDisplay.h"

#include <cstdlib>
#include <span>

namespace brevanta::functional {

static constexpr Milliseconds startTime { 15000 };

namespace {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

template <typename T> using Reply = std::unique_ptr<T, FreeReply>;

}

std::expected<std::unique_ptr<VirtualDisplay>, std::string> VirtualDisplay::start(DisplaySize size)
{
    auto server = ChildProcess::start({
        .arguments = { "Xvfb", "-displayfd", "1", "-screen", "0",
            std::to_string(size.width) + "x" + std::to_string(size.height) + "x24", "-nolisten", "tcp", "-noreset" },
        .environment = neutralEnvironment(),
    });
    if (!server)
        return std::unexpected("the X server cannot be started: " + server.error());
    std::unique_ptr<VirtualDisplay> display(new VirtualDisplay);
    display->m_server = std::move(*server);
    // The server says its number when it can be connected to.
    if (!display->m_server->output().awaitText("\n", startTime))
        return std::unexpected("the X server did not start: " + display->m_server->errors().text());
    const auto& output = display->m_server->output().text();
    display->m_name = ":" + output.substr(0, output.find('\n'));
    display->m_connection.reset(xcb_connect(display->m_name.c_str(), nullptr));
    if (xcb_connection_has_error(display->m_connection.get()))
        return std::unexpected("the X server " + display->m_name + " cannot be connected to");
    return display;
}

xcb_window_t VirtualDisplay::rootWindow() const
{
    return xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data->root;
}

xcb_atom_t VirtualDisplay::atom(const std::string& name) const
{
    auto* const connection = m_connection.get();
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t { XCB_ATOM_NONE };
}

static std::string titleOf(xcb_connection_t* connection, xcb_window_t window)
{
    static constexpr std::uint32_t longestTitle = 256;
    const auto cookie = xcb_get_property(connection, 0, window, XCB_ATOM_WM_NAME, XCB_ATOM_ANY, 0, longestTitle / 4);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply)
        return {};
    return { static_cast<const char*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) };
}

std::vector<MappedWindow> VirtualDisplay::windows() const
{
    auto* const connection = m_connection.get();
    const Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, rootWindow()), nullptr));
    if (!tree)
        return {};
    const std::span children(
        xcb_query_tree_children(tree.get()), static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    std::vector<MappedWindow> result;
    // A window may go away between two requests; its reply is then null.
    for (const auto child : children) {
        const Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, child), nullptr));
        const Reply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(connection, xcb_get_geometry(connection, child), nullptr));
        if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
            continue;
        result.push_back({ child, titleOf(connection, child), geometry->width, geometry->height });
    }
    return result;
}

std::vector<MappedWindow> VirtualDisplay::windowsTitled(const std::string& title) const
{
    auto result = windows();
    std::erase_if(result, [&](const MappedWindow& window) { return window.title != title; });
    return result;
}

bool VirtualDisplay::awaitWindows(const std::string& title, std::size_t count, Milliseconds within) const
{
    return awaitByAsking([&] { return windowsTitled(title).size() == count; }, within);
}

void VirtualDisplay::pressCloseButton(const MappedWindow& window) const
{
    xcb_client_message_event_t message {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window.id;
    message.type = atom("WM_PROTOCOLS");
    message.data.data32[0] = atom("WM_DELETE_WINDOW");
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(m_connection.get(), 0, window.id, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
    xcb_flush(m_connection.get());
}

void VirtualDisplay::moveWindow(const MappedWindow& window, int x, int y) const
{
    const std::uint32_t position[] = { static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y) };
    xcb_configure_window(m_connection.get(), window.id, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, position);
    xcb_flush(m_connection.get());
}

std::vector<std::uint8_t> VirtualDisplay::picture() const
{
    auto* const connection = m_connection.get();
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const auto cookie = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, 0, 0,
        screen->width_in_pixels, screen->height_in_pixels, ~0U);
    const Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection, cookie, nullptr));
    if (!reply)
        return {};
    const auto* bytes = xcb_get_image_data(reply.get());
    return { bytes, bytes + xcb_get_image_data_length(reply.get()) };
}

std::expected<void, std::string> VirtualDisplay::typeInto(const MappedWindow& window, const std::string& text) const
{
    return useKeyboard(window, { "type", "--args", "1", text, "key", "Return" });
}

std::expected<void, std::string> VirtualDisplay::press(const MappedWindow& window, const std::string& key) const
{
    return useKeyboard(window, { "key", key });
}

std::expected<void, std::string> VirtualDisplay::useKeyboard(
    const MappedWindow& window, const std::vector<std::string>& actions) const
{
    constexpr Milliseconds patience { 10000 };
    auto environment = neutralEnvironment();
    environment.push_back("DISPLAY=" + m_name);
    std::vector<std::string> arguments { "xdotool", "windowfocus", "--sync", std::to_string(window.id) };
    arguments.insert(arguments.end(), actions.begin(), actions.end());
    const auto typist
        = ChildProcess::start({ .arguments = std::move(arguments), .environment = std::move(environment) });
    if (!typist)
        return std::unexpected(typist.error());
    if ((*typist)->awaitExit(patience) != 0)
        return std::unexpected("nothing could be typed: " + (*typist)->errors().text());
    return {};
}

bool VirtualDisplay::awaitStillness(Milliseconds within) const
{
    static constexpr Milliseconds moment { 300 };
    auto last = picture();
    auto lastChange = std::chrono::steady_clock::now();
    return awaitByAsking(
        [&] {
            const auto now = std::chrono::steady_clock::now();
            if (auto current = picture(); current != last) {
                last = std::move(current);
                lastChange = now;
            }
            return now - lastChange >= moment;
        },
        within);
}

}
