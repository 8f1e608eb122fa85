#include "posix/SyslogLog.h"

#include "base/Text.h"

#include <syslog.h>

namespace brevanta {

SyslogLog::SyslogLog()
{
    ::openlog("Brevanta", LOG_PID, LOG_USER); // The system keeps the pointer, not a copy of the name.
}

SyslogLog::~SyslogLog() { ::closelog(); }

void SyslogLog::log(std::string_view line) { ::syslog(LOG_NOTICE, "%s", singleLine(line).c_str()); }

void SyslogLog::writeStandardError(std::string_view line) { m_standardError.writeStandardError(line); }

}
