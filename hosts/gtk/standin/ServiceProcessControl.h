#pragma once

#include "gtk/standin/ServiceStandIn.h"

#include <chrono>
#include <expected>
#include <filesystem>
#include <string>
#include <vector>

namespace brevanta {

// Starts a program as launchd starts a daemon: in a session of its own, with no descriptor but the standard ones, no
// input, and its output at the end of the file `log`. An argument that begins with "/" is taken below `root`. The error
// is an errno value, also when the program cannot be executed. There is at least one argument.
[[nodiscard]] std::expected<ServiceProcess, int> startServiceProcess(const std::filesystem::path& root,
    const std::vector<std::string>& arguments, const std::string& label, const std::filesystem::path& log);

// False once it has ended, also when nobody has waited for it yet, or when another process has its number.
[[nodiscard]] bool isRunning(const ServiceProcess& process);

// SIGTERM, and SIGKILL when that has not ended it within `patience`. Returns when it has ended; does nothing when it
// has already.
void endServiceProcess(const ServiceProcess& process, std::chrono::milliseconds patience = std::chrono::seconds(5));

}
