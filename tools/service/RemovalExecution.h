#pragma once

#include "service/RemovalOnDisk.h"
#include "service/Service.h"

#include <expected>
#include <optional>

namespace brevanta::service {

// Makes a removal of the service a real one: what its record says stands in the support folder too, and at its end the
// installation goes, and the service quits. The service outlives it.
class RemovalExecution {
public:
    // Takes up at once what a run before this one has left: a removal that had begun to take files away is finishing,
    // one that was requested is pending.
    RemovalExecution(Service&, RemovalOnDisk, RemovalTimes);
    RemovalExecution(const RemovalExecution&) = delete;
    RemovalExecution& operator=(const RemovalExecution&) = delete;
    ~RemovalExecution();

    // Takes the installation away once that is due and its locks are free; a service that is quitting for another
    // reason leaves it. Follows the service's own `advance`. An error, be it one of an earlier change of the support
    // folder, is one that the service cannot go on after.
    [[nodiscard]] std::expected<void, ServiceError> advance();

    // When `advance` has something to do, or the removal goes on, in seconds since the service's start.
    [[nodiscard]] std::optional<double> nextAt() const;

private:
    void noteState();

    Service& m_service;
    RemovalOnDisk m_disk;
    std::optional<double> m_triesAgainAt;
    std::optional<ServiceError> m_failure;
};

}
