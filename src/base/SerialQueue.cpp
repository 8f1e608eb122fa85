#include "base/SerialQueue.h"

#include <utility>

namespace brevanta {

SerialQueue::SerialQueue(std::function<void()> threadStarted)
    : m_thread([this, threadStarted = std::move(threadStarted)] { run(threadStarted); })
{
}

SerialQueue::~SerialQueue()
{
    std::deque<std::function<void()>> neverRun;
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
        neverRun.swap(m_work);
    }
    m_changed.notify_one();
    neverRun.clear(); // What the work held is let go before the wait, since the running work may depend on that.
    m_thread.join();
}

void SerialQueue::post(std::function<void()> work)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_ending)
            return;
        m_work.push_back(std::move(work));
    }
    m_changed.notify_one();
}

void SerialQueue::run(const std::function<void()>& threadStarted)
{
    if (threadStarted)
        threadStarted();
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ending || !m_work.empty(); });
        if (m_ending)
            return;
        auto work = std::move(m_work.front());
        m_work.pop_front();
        lock.unlock();
        work();
        work = nullptr; // What the work holds is released before the lock is taken again.
        lock.lock();
    }
}

}
