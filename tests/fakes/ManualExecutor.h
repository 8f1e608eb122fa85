#pragma once

#include "base/Executor.h"
#include "fakes/Recorded.h"

#include <deque>

namespace brevanta {

// A queue whose work runs when the test says so. While it runs, the test thread counts as the queue's thread.
class ManualExecutor final : public Executor, public Recorded {
public:
    void post(std::function<void()> work) override
    {
        told("post");
        m_work.push_back(std::move(work));
    }

    // Runs the oldest piece of work; false when there is none.
    bool runOne();
    void runAll();

    [[nodiscard]] std::size_t pending() const { return m_work.size(); }

    [[nodiscard]] static bool isRunning();

    // What the main thread does while a piece of work that takes its time goes on.
    static void meanwhile(const std::function<void()>& mainThread);

private:
    std::deque<std::function<void()>> m_work;
};

}
