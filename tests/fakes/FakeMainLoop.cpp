#include "fakes/FakeMainLoop.h"

#include "fakes/ManualExecutor.h"

#include <algorithm>
#include <cmath>

namespace brevanta {

class FakeMainLoop::FakeTimer final : public Timer {
public:
    FakeTimer(FakeMainLoop& loop, std::shared_ptr<Entry> entry)
        : m_loop(loop)
        , m_entry(std::move(entry))
    {
    }
    ~FakeTimer() override { m_loop.m_timers.remove(m_entry); }

private:
    FakeMainLoop& m_loop;
    std::shared_ptr<Entry> m_entry;
};

void FakeMainLoop::post(std::function<void()> work)
{
    const std::lock_guard lock(m_mutex);
    m_posted.push_back(std::move(work));
    m_somethingPosted.notify_all(); // Under the lock: the loop may be gone once it is released.
}

std::unique_ptr<Timer> FakeMainLoop::startTimer(double seconds, TimerRepeat repeat, std::function<void()> callback)
{
    told("timer of " + std::to_string(seconds));
    const double delay = seconds > 0 ? seconds : 0;
    auto entry
        = std::make_shared<Entry>(Entry { m_clock.continuousSeconds() + delay, delay, repeat, std::move(callback) });
    m_timers.push_back(entry);
    return std::make_unique<FakeTimer>(*this, std::move(entry));
}

bool FakeMainLoop::isMainThread() const
{
    return std::this_thread::get_id() == m_thread && !ManualExecutor::isRunning();
}

void FakeMainLoop::runPosted()
{
    while (true) {
        std::function<void()> work;
        {
            const std::lock_guard lock(m_mutex);
            if (m_posted.empty())
                return;
            work = std::move(m_posted.front());
            m_posted.pop_front();
        }
        work();
    }
}

void FakeMainLoop::awaitPosted()
{
    {
        std::unique_lock lock(m_mutex);
        m_somethingPosted.wait(lock, [this] { return !m_posted.empty(); });
    }
    runPosted();
}

void FakeMainLoop::advance(double seconds)
{
    const double until = m_clock.continuousSeconds() + seconds;
    runPosted();
    while (runNextTimer(until))
        runPosted();
    m_clock.setContinuousSeconds(until);
}

// The next time on the timer's beat that is still to come: ticks that were missed are not made up for.
double FakeMainLoop::nextTick(const Entry& entry) const
{
    const double next = entry.dueAt + entry.interval;
    const double late = m_clock.continuousSeconds() - next;
    return entry.interval > 0 && late >= 0 ? next + entry.interval * (std::floor(late / entry.interval) + 1) : next;
}

bool FakeMainLoop::runNextTimer(double until)
{
    const auto next
        = std::ranges::min_element(m_timers, {}, [](const std::shared_ptr<Entry>& entry) { return entry->dueAt; });
    if (next == m_timers.end() || (*next)->dueAt > until)
        return false;
    std::shared_ptr<Entry> entry = *next; // Kept, since the callback may destroy its own timer.
    m_clock.setContinuousSeconds(std::max(entry->dueAt, m_clock.continuousSeconds()));
    if (entry->repeat == TimerRepeat::forever)
        entry->dueAt = nextTick(*entry);
    else
        m_timers.remove(entry);
    entry->callback();
    return true;
}

}
