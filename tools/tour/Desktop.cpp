#include "tour/Desktop.h"

#include <fstream>

namespace brevanta::tour {

using functional::ChildProcess;
using functional::Milliseconds;
using functional::PrivateBus;
using functional::VirtualDisplay;

static constexpr Milliseconds startTime { 20000 };
static constexpr auto backgroundColours = "gradient:#5b8a99-#24475a";

// A desktop's bus starts its services when they are called; this bus starts nothing, so their programs are looked up
// where the bus would.
static std::string programOfService(const std::string& file)
{
    std::ifstream stream("/usr/share/dbus-1/services/" + file);
    static constexpr std::string_view key = "Exec=";
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(key))
            return line.substr(key.size());
    }
    return file;
}

bool Desktop::copySettings() const
{
    const auto folder = m_directory.path() / "config/xfce4/xfconf/xfce-perchannel-xml";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!error)
        std::filesystem::copy(BREVANTA_DESKTOP_SETTINGS, folder, error);
    return !error;
}

std::expected<void, std::string> Desktop::launch(std::vector<std::string> arguments)
{
    const auto name = arguments.front();
    auto process = ChildProcess::start({ .arguments = std::move(arguments), .environment = m_environment });
    if (!process)
        return std::unexpected(name + " cannot be started: " + process.error());
    m_processes.push_back(std::move(*process));
    return {};
}

std::expected<void, std::string> Desktop::run(std::vector<std::string> arguments)
{
    const auto name = arguments.front();
    if (auto launched = launch(std::move(arguments)); !launched)
        return launched;
    if (m_processes.back()->awaitExit(startTime) != 0)
        return std::unexpected(name + " failed:\n" + m_processes.back()->errors().text());
    return {};
}

std::expected<void, std::string> Desktop::showBackground()
{
    const auto picture = (m_directory.path() / "background.png").string();
    const auto dimensions = std::to_string(size.width) + "x" + std::to_string(size.height);
    auto drawn = run({ "convert", "-size", dimensions, backgroundColours, picture });
    return drawn ? run({ "xwallpaper", "--stretch", picture }) : drawn;
}

std::expected<std::unique_ptr<Desktop>, std::string> Desktop::start(
    const VirtualDisplay& display, const PrivateBus& bus)
{
    std::unique_ptr<Desktop> desktop(new Desktop);
    if (!desktop->m_directory.isValid() || !desktop->copySettings())
        return std::unexpected("the desktop's settings cannot be written");
    auto windows = DesktopWindows::connect(display);
    if (!windows)
        return std::unexpected(windows.error());
    desktop->m_windows = std::move(*windows);
    auto& environment = desktop->m_environment;
    environment = functional::neutralEnvironment();
    const auto directory = desktop->m_directory.path().string();
    std::erase_if(environment, [](const std::string& entry) { return entry.starts_with("HOME="); });
    environment.insert(environment.end(),
        { "HOME=" + directory, "XDG_CONFIG_HOME=" + directory + "/config", "XDG_RUNTIME_DIR=" + directory,
            "DISPLAY=" + display.name(), "DBUS_SESSION_BUS_ADDRESS=" + bus.address(), "NO_AT_BRIDGE=1",
            "GSETTINGS_BACKEND=memory" });

    if (auto shown = desktop->showBackground(); !shown)
        return std::unexpected(shown.error());
    struct Part {
        std::vector<std::string> arguments;
        std::string busName; // Empty for the window manager, which tells the display that it is there.
    };
    const Part parts[] = {
        { { programOfService("org.xfce.Xfconf.service") }, "org.xfce.Xfconf" },
        { { "xfwm4", "--compositor=on", "--vblank=off" }, "" },
        { { "xfce4-panel" }, "org.kde.StatusNotifierWatcher" },
        { { programOfService("org.xfce.xfce4-notifyd.Notifications.service") }, "org.freedesktop.Notifications" },
    };
    for (const auto& part : parts) {
        if (auto launched = desktop->launch(part.arguments); !launched)
            return std::unexpected(launched.error());
        const bool isThere = part.busName.empty() ? desktop->m_windows->awaitManager(startTime)
                                                  : bus.awaitOwner(part.busName, startTime);
        if (!isThere)
            return std::unexpected(
                part.arguments.front() + " did not start:\n" + desktop->m_processes.back()->errors().text());
    }
    return desktop;
}

}
