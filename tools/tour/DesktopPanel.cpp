#include "tour/DesktopPanel.h"

#include <algorithm>
#include <fstream>

namespace brevanta::tour {

using functional::ChildProcess;
using functional::Milliseconds;
using functional::PrivateBus;
using functional::VirtualDisplay;

static constexpr Milliseconds startTime { 20000 };

static constexpr std::string_view panelSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="28"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray"/>
  </property>
</channel>
)";

static constexpr std::string_view notificationSettings = R"([global]
    origin = bottom-right
    offset = 24x24
    width = 360
    font = DejaVu Sans 11
[urgency_normal]
    timeout = 6
)";

// The settings store is started by the bus on a desktop; this bus starts nothing, so its program is looked up where the
// bus would.
static std::string settingsStoreProgram()
{
    std::ifstream file("/usr/share/dbus-1/services/org.xfce.Xfconf.service");
    static constexpr std::string_view key = "Exec=";
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key))
            return line.substr(key.size());
    }
    return {};
}

bool DesktopPanel::writeSettings() const
{
    const auto write = [&](const std::filesystem::path& file, std::string_view text) {
        std::error_code error;
        std::filesystem::create_directories((m_directory.path() / file).parent_path(), error);
        std::ofstream stream(m_directory.path() / file);
        stream << text;
        return !error && static_cast<bool>(stream.flush());
    };
    return write("config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", panelSettings)
        && write("config/dunst/dunstrc", notificationSettings);
}

std::expected<void, std::string> DesktopPanel::launch(
    std::vector<std::string> arguments, const std::vector<std::string>& environment)
{
    const auto name = arguments.front();
    auto process = ChildProcess::start({ .arguments = std::move(arguments), .environment = environment });
    if (!process)
        return std::unexpected(name + " cannot be started: " + process.error());
    m_processes.push_back(std::move(*process));
    return {};
}

std::expected<std::unique_ptr<DesktopPanel>, std::string> DesktopPanel::start(
    const VirtualDisplay& display, const PrivateBus& bus)
{
    std::unique_ptr<DesktopPanel> panel(new DesktopPanel);
    if (!panel->m_directory.isValid() || !panel->writeSettings())
        return std::unexpected("the panel's settings cannot be written");
    auto environment = functional::neutralEnvironment();
    const auto directory = panel->m_directory.path().string();
    std::erase_if(environment, [](const std::string& entry) { return entry.starts_with("HOME="); });
    environment.insert(environment.end(),
        { "HOME=" + directory, "XDG_CONFIG_HOME=" + directory + "/config", "XDG_RUNTIME_DIR=" + directory,
            "DISPLAY=" + display.name(), "DBUS_SESSION_BUS_ADDRESS=" + bus.address(), "NO_AT_BRIDGE=1",
            "GSETTINGS_BACKEND=memory" });

    struct Part {
        std::vector<std::string> arguments;
        std::string busName;
    };
    const Part parts[] = {
        { { settingsStoreProgram() }, "org.xfce.Xfconf" },
        { { "xfce4-panel", "--disable-wm-check" }, "org.kde.StatusNotifierWatcher" },
        { { "dunst" }, "org.freedesktop.Notifications" },
    };
    for (const auto& part : parts) {
        if (auto launched = panel->launch(part.arguments, environment); !launched)
            return std::unexpected(launched.error());
        if (!bus.awaitOwner(part.busName, startTime))
            return std::unexpected(
                part.arguments.front() + " did not start:\n" + panel->m_processes.back()->errors().text());
    }
    return panel;
}

}
