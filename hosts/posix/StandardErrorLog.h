#pragma once

#include "platform/SystemLog.h"

#include <mutex>
#include <unistd.h>

namespace brevanta {

// Both kinds of line to one descriptor, standard error unless told otherwise, each by one write(2). Every control
// character in a line becomes a space. A line that cannot be written is lost.
class StandardErrorLog final : public SystemLog {
public:
    // The descriptor stays the caller's, who keeps it open.
    explicit StandardErrorLog(int descriptor = STDERR_FILENO)
        : m_descriptor(descriptor)
    {
    }

    void log(std::string_view line) override;
    void logToCategory(std::string_view, std::string_view line) override { log(line); }
    void writeStandardError(std::string_view line) override;

private:
    std::mutex m_mutex;
    int m_descriptor;
};

}
