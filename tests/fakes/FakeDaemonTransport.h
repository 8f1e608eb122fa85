#pragma once

#include "daemon/DaemonTransport.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <vector>

namespace brevanta {

// Answers each request with what the test scripted. Runs on the test's queue.
class FakeDaemonTransport final : public DaemonTransport {
public:
    using Answer = std::expected<std::string, DaemonFailure>; // The reply's bytes.

    explicit FakeDaemonTransport(std::function<Answer(const Json& request)> respond)
        : m_respond(std::move(respond))
    {
    }

    [[nodiscard]] std::expected<void, DaemonFailure> exchange(const Json& request, PaddedBuffer& reply) override
    {
        const auto answer = m_respond(request);
        reply.clear();
        if (!answer)
            return std::unexpected(answer.error());
        reply.assign(*answer);
        return {};
    }

private:
    std::function<Answer(const Json& request)> m_respond;
};

}
