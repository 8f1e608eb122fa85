#pragma once

#include "posix/StandardErrorLog.h"

namespace brevanta {

// Log lines to syslog(3) as "Brevanta[pid]", facility user, level notice. At most one at a time in a process, since the
// connection to the system's log belongs to the process.
class SyslogLog final : public SystemLog {
public:
    SyslogLog();
    ~SyslogLog() override;
    SyslogLog(const SyslogLog&) = delete;
    SyslogLog& operator=(const SyslogLog&) = delete;

    void log(std::string_view line) override;
    void logToCategory(std::string_view, std::string_view line) override { log(line); }
    void writeStandardError(std::string_view line) override;

private:
    StandardErrorLog m_standardError;
};

}
