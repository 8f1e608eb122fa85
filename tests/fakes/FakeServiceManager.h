#pragma once

#include "fakes/FakeAnswers.h"
#include "fakes/Recorded.h"
#include "platform/ServiceManager.h"

namespace brevanta {

// Questions are answered with what `launchChecks.result` and `backgroundItems.result` hold, posted to the main loop.
class FakeServiceManager final : public ServiceManager, public Recorded {
public:
    explicit FakeServiceManager(Executor& mainLoop)
        : launchChecks(mainLoop)
        , backgroundItems(mainLoop)
    {
        backgroundItems.result = BackgroundItem::unknown;
    }

    void checkLaunch(std::function<void(std::optional<LaunchCheck>)> onEnd) override
    {
        launchChecks.ask(std::move(onEnd));
    }
    void readBackgroundItem(std::function<void(BackgroundItem)> onEnd) override
    {
        backgroundItems.ask(std::move(onEnd));
    }
    [[nodiscard]] bool isProgramInstalled() const override
    {
        told("service program");
        return programIsInstalled;
    }

    FakeAnswers<std::optional<LaunchCheck>> launchChecks;
    FakeAnswers<BackgroundItem> backgroundItems;
    bool programIsInstalled { false };
};

}
