#pragma once

#include "crash/CrashReporting.h"

#include <memory>

namespace brevanta {

struct AppPorts;
struct BuildConfiguration;

// The first step of a launch, so that a crash of any later one is reported. The ports outlive what is returned. Main
// thread only.
[[nodiscard]] std::unique_ptr<CrashReporting> startCrashReporting(
    const AppPorts& ports, const BuildConfiguration& configuration);

}
