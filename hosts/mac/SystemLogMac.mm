#include "mac/SystemLogMac.h"

#include "base/Text.h"

namespace brevanta {

SystemLogMac::SystemLogMac(const std::string& subsystem, LogDestination destination)
    : m_log(os_log_create(subsystem.c_str(), "client"))
    , m_destination(destination)
{
}

void SystemLogMac::log(std::string_view line)
{
    os_log(m_log, "%{public}s", singleLine(line).c_str());
    if (m_destination == LogDestination::systemLogAndStandardError)
        m_standardError.log(line);
}

void SystemLogMac::writeStandardError(std::string_view line) { m_standardError.writeStandardError(line); }

}
