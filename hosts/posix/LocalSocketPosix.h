#pragma once

#include "platform/LocalSocket.h"

#include <memory>

namespace brevanta {

// Unix-domain stream sockets by socket(2). The process must have called `ignoreBrokenPipeSignal`, and the thread that
// connects, sends and receives `blockAllSignals`: a call that a signal interrupts counts as failed.
class LocalSocketPosix final : public LocalSocketConnector {
public:
    LocalSocketPosix();
    ~LocalSocketPosix() override;

    // An empty path, or one with a NUL in it, is a null result too. A connection may outlive its connector.
    [[nodiscard]] std::unique_ptr<LocalConnection> connect(const std::string& path, int timeoutSeconds) override;

    void interrupt() override;

    class OpenSockets;

private:
    std::shared_ptr<OpenSockets> m_openSockets;
};

}
