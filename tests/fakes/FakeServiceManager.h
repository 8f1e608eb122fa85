#pragma once

#include "fakes/FakeAnswers.h"
#include "platform/ServiceManager.h"

namespace brevanta {

// Observations are answered with what `observations.result` holds, posted to the main loop.
class FakeServiceManager final : public ServiceManager {
public:
    explicit FakeServiceManager(Executor& mainLoop)
        : observations(mainLoop)
    {
    }

    void observe(std::function<void(ServiceObservation)> onEnd) override { observations.ask(std::move(onEnd)); }
    [[nodiscard]] bool isProgramInstalled() const override { return programIsInstalled; }

    FakeAnswers<ServiceObservation> observations;
    bool programIsInstalled { false };
};

}
