#pragma once

#include "support/ChildProcess.h"
#include "support/PrivateBus.h"
#include "support/TemporaryDirectory.h"
#include "support/VirtualDisplay.h"

namespace brevanta::tour {

// What a desktop has around a client: a panel along the top edge whose only content is the area for status items, at
// its right end, and a service that shows notifications in the lower right corner.
class DesktopPanel {
public:
    [[nodiscard]] static std::expected<std::unique_ptr<DesktopPanel>, std::string> start(
        const functional::VirtualDisplay&, const functional::PrivateBus&);

    static constexpr int height = 28;

private:
    DesktopPanel() = default;
    [[nodiscard]] bool writeSettings() const;
    [[nodiscard]] std::expected<void, std::string> launch(
        std::vector<std::string> arguments, const std::vector<std::string>& environment);

    functional::TemporaryDirectory m_directory;
    std::vector<std::unique_ptr<functional::ChildProcess>> m_processes;
};

}
