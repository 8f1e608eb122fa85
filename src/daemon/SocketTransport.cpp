#include "daemon/SocketTransport.h"

#include "platform/LocalSocket.h"

#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

constexpr std::size_t longestPath = 103; // sun_path has 104 bytes on macOS, one of them for the NUL.
constexpr int timeoutSeconds = 5;
constexpr std::size_t receiveSize = 4096;

std::unexpected<DaemonFailure> fail(DaemonError::Kind kind)
{
    return std::unexpected<DaemonFailure>(DaemonError { kind, {} });
}

std::expected<std::string, DaemonFailure> serialize(const Json& request)
{
    try {
        return request.dump() + '\n';
    } catch (const Json::exception&) {
        // The library's own message quotes the offending text, which may be a token.
        return std::unexpected(JsonSerializationError { "text is not UTF-8" });
    }
}

}

SocketTransport::SocketTransport(std::string socketPath, LocalSocketConnector& sockets)
    : m_socketPath(std::move(socketPath))
    , m_sockets(sockets)
{
}

std::expected<void, DaemonFailure> SocketTransport::exchange(const Json& request, PaddedBuffer& reply)
{
    reply.clear();
    if (m_socketPath.size() > longestPath)
        return fail(DaemonError::Kind::connectionFailed);
    const auto connection = m_sockets.connect(m_socketPath, timeoutSeconds);
    if (!connection)
        return fail(DaemonError::Kind::connectionFailed);

    const auto bytes = serialize(request);
    if (!bytes)
        return std::unexpected(bytes.error());
    // A short write is a failure: a request that has to wait for room is larger than the service takes.
    if (connection->send(*bytes) != static_cast<std::ptrdiff_t>(bytes->size()))
        return fail(DaemonError::Kind::sendFailed);

    while (true) {
        const auto received = connection->receive(reply.writableTail(receiveSize));
        if (received <= 0)
            break;
        reply.commit(static_cast<std::size_t>(received));
        if (reply.view().back() == '\n')
            break;
    }
    return {};
}

}
