#pragma once

#include "platform/ServiceManager.h"

namespace brevanta {

// Whether the blocking service's program file is on this computer.
enum class ServiceProgram { present, absent };

[[nodiscard]] inline ServiceProgram lookForServiceProgram(const ServiceManager& services)
{
    return services.isProgramInstalled() ? ServiceProgram::present : ServiceProgram::absent;
}

}
