#pragma once

#include "service/FileDescriptor.h"

namespace brevanta::service {

// Turns SIGTERM and SIGINT into a descriptor that becomes readable. There can be one at a time.
class SignalWatch {
public:
    SignalWatch();
    ~SignalWatch();
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

    // Negative when there is no pipe to be had.
    [[nodiscard]] int descriptor() const { return m_readEnd.get(); }

private:
    FileDescriptor m_readEnd;
    FileDescriptor m_writeEnd;
};

}
