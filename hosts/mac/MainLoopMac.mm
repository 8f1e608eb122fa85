#include "mac/MainLoopMac.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <utility>

namespace brevanta {

namespace {

class TimerMac final : public Timer {
public:
    TimerMac(double seconds, TimerRepeat repeat, std::function<void()> callback)
    {
        const auto shared = std::make_shared<std::function<void()>>(std::move(callback));
        m_timer = [NSTimer timerWithTimeInterval:std::max(seconds, 0.0)
                                         repeats:repeat == TimerRepeat::forever
                                           block:^(NSTimer*) {
                                               // The callback may destroy this timer, and with it the block.
                                               const auto running = shared;
                                               @autoreleasepool {
                                                   (*running)();
                                               }
                                           }];
        [NSRunLoop.mainRunLoop addTimer:m_timer forMode:NSDefaultRunLoopMode];
        [NSRunLoop.mainRunLoop addTimer:m_timer forMode:NSModalPanelRunLoopMode];
    }

    ~TimerMac() override { [m_timer invalidate]; }

    TimerMac(const TimerMac&) = delete;
    TimerMac& operator=(const TimerMac&) = delete;

private:
    NSTimer* m_timer;
};

}

MainLoopMac::MainLoopMac()
{
    CFRunLoopSourceContext context {};
    context.info = this;
    context.perform = [](void* loop) { static_cast<MainLoopMac*>(loop)->runOne(); };
    m_source = CFRunLoopSourceCreate(nullptr, 0, &context);
    CFRunLoopAddSource(CFRunLoopGetMain(), m_source, kCFRunLoopCommonModes);
}

MainLoopMac::~MainLoopMac()
{
    CFRunLoopSourceInvalidate(m_source);
    CFRelease(m_source);
}

void MainLoopMac::post(std::function<void()> work)
{
    const std::lock_guard lock(m_mutex);
    m_work.push_back(std::move(work));
    wake();
}

void MainLoopMac::runOne()
{
    std::function<void()> work;
    {
        const std::lock_guard lock(m_mutex);
        if (m_work.empty())
            return;
        work = std::move(m_work.front());
        m_work.pop_front();
        // Signalled before the work runs: a modal loop inside it goes on with what was posted.
        if (!m_work.empty())
            wake();
    }
    @autoreleasepool {
        work();
    }
}

void MainLoopMac::wake()
{
    CFRunLoopSourceSignal(m_source);
    CFRunLoopWakeUp(CFRunLoopGetMain());
}

std::unique_ptr<Timer> MainLoopMac::startTimer(double seconds, TimerRepeat repeat, std::function<void()> callback)
{
    return std::make_unique<TimerMac>(seconds, repeat, std::move(callback));
}

bool MainLoopMac::isMainThread() const { return NSThread.isMainThread; }

}
