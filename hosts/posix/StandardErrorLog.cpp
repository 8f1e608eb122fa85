#include "posix/StandardErrorLog.h"

#include "base/Text.h"
#include "posix/WriteAll.h"

namespace brevanta {

void StandardErrorLog::log(std::string_view line) { writeStandardError(line); }

void StandardErrorLog::writeStandardError(std::string_view line)
{
    const auto text = singleLine(line) + '\n';
    const std::lock_guard lock(m_mutex);
    static_cast<void>(writeAll(m_descriptor, text)); // Nobody is left to be told.
}

}
