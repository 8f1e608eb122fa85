#pragma once

#include "platform/MainLoop.h"

#include <memory>
#include <thread>

namespace brevanta {

// GLib's default main context, served by the thread that makes this object. Posted work and timers have the priority
// of window events, so that a busy page cannot hold the polls up.
class MainLoopGtk final : public MainLoop {
public:
    MainLoopGtk();
    ~MainLoopGtk() override;
    MainLoopGtk(const MainLoopGtk&) = delete;
    MainLoopGtk& operator=(const MainLoopGtk&) = delete;

    void post(std::function<void()> work) override;

    // A repeating timer keeps its beat: a tick that came late does not shift the ones after it.
    [[nodiscard]] std::unique_ptr<Timer> startTimer(
        double seconds, TimerRepeat repeat, std::function<void()> callback) override;

    [[nodiscard]] bool isMainThread() const override;

private:
    struct Posted;

    std::thread::id m_mainThread;
    std::shared_ptr<Posted> m_posted;
};

}
