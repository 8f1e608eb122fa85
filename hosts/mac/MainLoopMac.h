#pragma once

#include "platform/MainLoop.h"

#import <CoreFoundation/CoreFoundation.h>

#include <deque>
#include <mutex>

namespace brevanta {

// The run loop of the main thread. Posted work runs from a run loop source in the common modes, timers in the default
// and the modal-panel mode (documentation pages CFRunLoopSource and NSTimer). The main dispatch queue is not used:
// while one of its blocks runs a modal loop it runs no other block, and what is posted would wait for the alert to end.
// Created and destroyed on the main thread.
class MainLoopMac final : public MainLoop {
public:
    MainLoopMac();
    ~MainLoopMac() override;

    MainLoopMac(const MainLoopMac&) = delete;
    MainLoopMac& operator=(const MainLoopMac&) = delete;

    void post(std::function<void()> work) override;
    [[nodiscard]] std::unique_ptr<Timer> startTimer(
        double seconds, TimerRepeat repeat, std::function<void()> callback) override;
    [[nodiscard]] bool isMainThread() const override;

private:
    void runOne();
    void wake();

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_work;
    CFRunLoopSourceRef m_source { nullptr };
};

}
