#pragma once

#include "fakes/FakeClock.h"
#include "fakes/Recorded.h"
#include "platform/MainLoop.h"

#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <thread>

namespace brevanta {

// A main loop on virtual time: nothing happens until the test runs it. Posting is thread-safe, the rest is the test
// thread's. Advancing the loop advances the clock with it.
class FakeMainLoop final : public MainLoop, public Recorded {
public:
    explicit FakeMainLoop(FakeClock& clock)
        : m_clock(clock)
    {
    }

    void post(std::function<void()> work) override;
    [[nodiscard]] std::unique_ptr<Timer> startTimer(
        double seconds, TimerRepeat repeat, std::function<void()> callback) override;
    [[nodiscard]] bool isMainThread() const override;

    // Runs posted work, and what that posts, until there is none.
    void runPosted();

    // Waits, in real time, until some thread has posted work; then runs it.
    void awaitPosted();

    // Lets virtual time pass, firing timers at their times and running posted work after each.
    void advance(double seconds);

    [[nodiscard]] std::size_t timerCount() const { return m_timers.size(); }

private:
    struct Entry {
        double dueAt;
        double interval;
        TimerRepeat repeat;
        std::function<void()> callback;
    };
    class FakeTimer;

    bool runNextTimer(double until);
    [[nodiscard]] double nextTick(const Entry& entry) const;

    FakeClock& m_clock;
    std::thread::id m_thread { std::this_thread::get_id() };
    std::mutex m_mutex;
    std::condition_variable m_somethingPosted;
    std::deque<std::function<void()>> m_posted;
    std::list<std::shared_ptr<Entry>> m_timers;
};

}
