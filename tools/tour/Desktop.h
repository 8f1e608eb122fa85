#pragma once

#include "support/ChildProcess.h"
#include "support/PrivateBus.h"
#include "support/TemporaryDirectory.h"
#include "support/VirtualDisplay.h"
#include "tour/DesktopWindows.h"

namespace brevanta::tour {

// What a desktop has around a client: a background, a window manager that draws shadows, a panel along the top edge
// with the area for status items at its right end, and a service that shows notices in the lower right corner. All are
// Xfce's, with the settings in the folder `desktop`.
class Desktop {
public:
    [[nodiscard]] static std::expected<std::unique_ptr<Desktop>, std::string> start(
        const functional::VirtualDisplay&, const functional::PrivateBus&);

    [[nodiscard]] const DesktopWindows& windows() const { return *m_windows; }

    // A window of the client, a menu and two notices have room beside each other.
    static constexpr functional::DisplaySize size { 1660, 900 };
    static constexpr int panelHeight = 28;

private:
    Desktop() = default;
    [[nodiscard]] bool copySettings() const;
    [[nodiscard]] std::expected<void, std::string> launch(std::vector<std::string> arguments);
    // Runs the program to its end.
    [[nodiscard]] std::expected<void, std::string> run(std::vector<std::string> arguments);
    [[nodiscard]] std::expected<void, std::string> showBackground();

    functional::TemporaryDirectory m_directory;
    std::vector<std::string> m_environment;
    std::vector<std::unique_ptr<functional::ChildProcess>> m_processes;
    std::unique_ptr<DesktopWindows> m_windows;
};

}
