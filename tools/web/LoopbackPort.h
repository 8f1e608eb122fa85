#pragma once

#include "service/ServiceError.h"
#include "web/GLibPointers.h"

#include <cstdint>
#include <expected>
#include <vector>

namespace brevanta::web {

// A TCP port of 127.0.0.1 and ::1 (where there is IPv6). It stays taken while nobody listens on it, so that connections
// are refused and no other program gets it.
class LoopbackPort {
public:
    enum class Scheme { https, http };

    // Takes the port; 0 stands for any free one. Connections are refused until `listen`.
    [[nodiscard]] static std::expected<LoopbackPort, service::ServiceError> take(std::uint16_t number, Scheme);

    [[nodiscard]] std::uint16_t number() const { return m_number; }
    [[nodiscard]] std::string url() const;

    [[nodiscard]] std::expected<void, service::ServiceError> listen(SoupServer*) const;
    // Once the server has been disconnected, which closes the sockets.
    [[nodiscard]] std::expected<void, service::ServiceError> takeAgain();

private:
    LoopbackPort(std::uint16_t number, Scheme scheme)
        : m_number(number)
        , m_scheme(scheme)
    {
    }
    [[nodiscard]] std::expected<void, service::ServiceError> bind();

    std::uint16_t m_number;
    Scheme m_scheme;
    std::vector<GLibPointer<GSocket>> m_sockets;
};

}
