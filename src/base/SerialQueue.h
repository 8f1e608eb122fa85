#pragma once

#include "base/Executor.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

namespace brevanta {

// An executor with a thread of its own, which starts with the queue and ends with it.
class SerialQueue final : public Executor {
public:
    // `threadStarted` runs first on the new thread: the place to name it and to set its signal mask.
    explicit SerialQueue(std::function<void()> threadStarted = {});

    // Waits for the work that is running; work that has not begun is destroyed. Must not be called on the queue itself.
    ~SerialQueue() override;

    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    void post(std::function<void()> work) override;

private:
    void run(const std::function<void()>& threadStarted);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_work;
    bool m_ending { false };
    std::thread m_thread;
};

}
