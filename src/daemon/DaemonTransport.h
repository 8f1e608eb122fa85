#pragma once

#include "base/Json.h"
#include "base/PaddedBuffer.h"
#include "daemon/DaemonFailure.h"

#include <expected>

namespace brevanta {

// Carries one request to the blocking service and its reply back. Called on the service's queue only, one exchange at
// a time, and may block there.
class DaemonTransport {
public:
    virtual ~DaemonTransport() = default;

    // Fills `reply` with all bytes of the reply, which may be none. `request` is a JSON object.
    [[nodiscard]] virtual std::expected<void, DaemonFailure> exchange(const Json& request, PaddedBuffer& reply) = 0;
};

}
