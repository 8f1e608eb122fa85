#pragma once

#include "posix/StandardErrorLog.h"

#include <os/log.h>

#include <string>

namespace brevanta {

// Where `log` writes: developers read the lines in the terminal as well.
enum class LogDestination { systemLog, systemLogAndStandardError };

// The unified log (documentation page "Generating Log Messages from Your Code"). Lines are public: they hold no token.
class SystemLogMac final : public SystemLog {
public:
    SystemLogMac(const std::string& subsystem, LogDestination destination);

    void log(std::string_view line) override;
    void logToCategory(std::string_view category, std::string_view line) override;
    void writeStandardError(std::string_view line) override;

private:
    std::string m_subsystem;
    LogDestination m_destination;
    StandardErrorLog m_standardError;
};

}
