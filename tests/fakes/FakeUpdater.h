#pragma once

#include "fakes/Recorded.h"
#include "platform/Updater.h"

#include <utility>

namespace brevanta {

// Records what it was told.
class FakeUpdater final : public Updater, public Recorded {
public:
    void start(RelaunchHandler newHandler) override
    {
        told("updater");
        ++starts;
        handler = std::move(newHandler);
    }
    [[nodiscard]] bool automaticChecks() const override { return checks; }
    void setAutomaticChecks(bool on) override { checks = on; }
    void checkNow() override { ++checksNow; }

    int starts { 0 };
    RelaunchHandler handler;
    bool checks { false };
    int checksNow { 0 };
};

}
