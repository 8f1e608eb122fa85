#pragma once

#include "support/PrivateBus.h"

namespace brevanta::functional {

// Notes that an object on the bus has sent a signal of one interface.
class SignalWatch {
public:
    SignalWatch(const PrivateBus& bus, const char* interface, const std::string& path);
    ~SignalWatch();
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

    // Asks `isReached` at once and then after each signal, which is all that tells a panel to look again.
    [[nodiscard]] bool awaitCondition(const std::function<bool()>& isReached, Milliseconds within);

private:
    GDBusConnection* m_connection;
    unsigned m_subscription { 0 };
    bool m_hasNews { true };
};

}
