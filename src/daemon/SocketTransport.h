#pragma once

#include "daemon/DaemonTransport.h"

#include <string>

namespace brevanta {

class LocalSocketConnector;

// One Unix-domain stream connection per exchange: the request as compact JSON and a line feed, sent whole or not at
// all; then the reply until a received piece ends with a line feed, the service closes, or it is silent for 5 seconds.
// What had arrived by then is the reply. Nothing is tried twice.
class SocketTransport final : public DaemonTransport {
public:
    // A path of more than 103 bytes fits no sockaddr_un (unix(4)): every exchange with it fails as `connectionFailed`.
    SocketTransport(std::string socketPath, LocalSocketConnector& sockets);

    [[nodiscard]] std::expected<void, DaemonFailure> exchange(const Json& request, PaddedBuffer& reply) override;

private:
    std::string m_socketPath;
    LocalSocketConnector& m_sockets;
};

}
