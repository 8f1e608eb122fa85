#pragma once

#include "daemon/DaemonFailure.h"

#include <memory>

namespace brevanta {

struct BlockingStatus;

// A part of the client that is told of each poll. Main thread only.
class StatusConsumer {
public:
    virtual ~StatusConsumer() = default;

    // A poll is about to begin; one of the two below ends it, and none begins before.
    virtual void pollBegan() { }

    // A reply of the same bytes as the one before is handed on as the same object. Never calls back into the caller.
    virtual void consume(const std::shared_ptr<const BlockingStatus>& status) = 0;

    // A poll ended without a status, or goes on for so long that it counts as failed: this comes again and again, and
    // a status may still end the poll. As `consume`.
    virtual void serviceFailed(const DaemonFailure& failure) = 0;
};

}
