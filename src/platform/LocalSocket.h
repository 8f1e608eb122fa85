#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace brevanta {

// A connected stream socket of the local machine; destroying it closes it.
class LocalConnection {
public:
    virtual ~LocalConnection() = default;

    // One send(2), flags 0: the number of bytes that were taken, or a negative number on an error or when the time-out
    // passed. A peer that has gone is an error and raises no signal.
    [[nodiscard]] virtual std::ptrdiff_t send(std::span<const char> bytes) = 0;

    // One recv(2), flags 0: the number of bytes read, 0 at the end of the stream, or a negative number on an error or
    // when the time-out passed.
    [[nodiscard]] virtual std::ptrdiff_t receive(std::span<char> buffer) = 0;
};

// Opens Unix-domain stream connections: unix(7), unix(4) on macOS. `connect` and the connection's calls block, so they
// belong on a queue and never on the main thread.
class LocalSocketConnector {
public:
    virtual ~LocalSocketConnector() = default;

    // Connects to the socket at `path` (UTF-8, at most 103 bytes; a longer one is a null result without an attempt),
    // then limits every send and receive to `timeoutSeconds`. Null when it could not be connected; a service that
    // accepts no connection is refused at once rather than waited for.
    [[nodiscard]] virtual std::unique_ptr<LocalConnection> connect(const std::string& path, int timeoutSeconds) = 0;

    // From any thread: ends the call that is blocked in a connection of this connector, and makes every later
    // `connect` fail. Used once, when the application ends, so that a silent service cannot hold it.
    virtual void interrupt() = 0;
};

}
