#include "mac/SystemLogMac.h"

#include "base/Text.h"

namespace brevanta {

SystemLogMac::SystemLogMac(const std::string& subsystem, LogDestination destination)
    : m_subsystem(subsystem)
    , m_destination(destination)
{
}

void SystemLogMac::log(std::string_view line) { logToCategory("client", line); }

void SystemLogMac::logToCategory(std::string_view category, std::string_view line)
{
    // The same object each time for the same names (documentation page os_log_create).
    const os_log_t categoryLog = os_log_create(m_subsystem.c_str(), std::string(category).c_str());
    os_log(categoryLog, "%{public}s", singleLine(line).c_str());
    if (m_destination == LogDestination::systemLogAndStandardError)
        m_standardError.log(line);
}

void SystemLogMac::writeStandardError(std::string_view line) { m_standardError.writeStandardError(line); }

}
