#include "web/LoopbackPort.h"

#include <netinet/in.h>
#include <string>
#include <sys/socket.h>

namespace brevanta::web {

using service::fail;
using service::ServiceError;

// How often another free port is looked for when the one found for IPv4 is taken for IPv6.
static constexpr int mostAttempts = 20;

static std::expected<GLibPointer<GSocket>, ServiceError> boundSocket(GSocketFamily family, std::uint16_t number)
{
    ErrorSlot error;
    GLibPointer<GSocket> socket(g_socket_new(family, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_DEFAULT, error.address()));
    if (!socket)
        return fail(error.message());
    if (family == G_SOCKET_FAMILY_IPV6
        && !g_socket_set_option(socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, 1, error.address()))
        return fail(error.message());
    const GLibPointer<GInetAddress> loopback(g_inet_address_new_loopback(family));
    const GLibPointer<GSocketAddress> address(g_inet_socket_address_new(loopback.get(), number));
    if (!g_socket_bind(socket.get(), address.get(), TRUE, error.address()))
        return fail(error.message());
    return socket;
}

static std::uint16_t portOf(GSocket* socket)
{
    const GLibPointer<GSocketAddress> address(g_socket_get_local_address(socket, nullptr));
    return address ? g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(address.get())) : 0;
}

static bool hasInternetProtocol6() { return boundSocket(G_SOCKET_FAMILY_IPV6, 0).has_value(); }

std::expected<LoopbackPort, ServiceError> LoopbackPort::take(std::uint16_t number, Scheme scheme)
{
    std::expected<void, ServiceError> bound;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        LoopbackPort port(number, scheme);
        bound = port.bind();
        if (bound)
            return port;
        if (number)
            break;
    }
    return std::unexpected(bound.error());
}

std::expected<void, ServiceError> LoopbackPort::bind()
{
    auto first = boundSocket(G_SOCKET_FAMILY_IPV4, m_number);
    if (!first)
        return fail("port " + std::to_string(m_number) + ": " + first.error().message);
    m_number = portOf(first->get());
    m_sockets.push_back(std::move(*first));
    if (!hasInternetProtocol6())
        return {};
    auto second = boundSocket(G_SOCKET_FAMILY_IPV6, m_number);
    if (!second)
        return fail("port " + std::to_string(m_number) + ": " + second.error().message);
    m_sockets.push_back(std::move(*second));
    return {};
}

std::string LoopbackPort::url() const
{
    return (m_scheme == Scheme::https ? "https" : "http") + std::string("://localhost:") + std::to_string(m_number)
        + "/";
}

std::expected<void, ServiceError> LoopbackPort::listen(SoupServer* server) const
{
    const auto options = m_scheme == Scheme::https ? SOUP_SERVER_LISTEN_HTTPS : SoupServerListenOptions {};
    for (const auto& socket : m_sockets) {
        ErrorSlot error;
        if (!g_socket_listen(socket.get(), error.address())
            || !soup_server_listen_socket(server, socket.get(), options, error.address()))
            return fail("port " + std::to_string(m_number) + ": " + error.message());
    }
    return {};
}

std::expected<void, ServiceError> LoopbackPort::takeAgain()
{
    m_sockets.clear();
    return bind();
}

}
