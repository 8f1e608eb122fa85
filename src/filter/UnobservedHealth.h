#pragma once

#include "filter/ComponentHealth.h"

namespace brevanta {

// Health without an observer: nothing is known of either component, so both lines say that they are being checked, no
// action is offered and no report is sent.
class UnobservedHealth final : public ComponentHealth {
public:
    [[nodiscard]] std::optional<Json> filterHealthReport() override;
    void pollSucceeded(const BlockingStatus& status, double requestStartedAt) override;
    void pollFailed(const DaemonFailure& failure, double requestStartedAt) override;
    [[nodiscard]] ComponentLine serviceLine() const override;
    [[nodiscard]] ComponentLine filterLine() const override;
};

}
