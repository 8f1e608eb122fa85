#include "fakes/ManualExecutor.h"

namespace brevanta {

namespace {

thread_local bool runningNow = false;

}

bool ManualExecutor::runOne()
{
    if (m_work.empty())
        return false;
    const auto work = std::move(m_work.front());
    m_work.pop_front();
    runningNow = true;
    work();
    runningNow = false;
    return true;
}

void ManualExecutor::runAll()
{
    while (runOne()) { }
}

bool ManualExecutor::isRunning() { return runningNow; }

void ManualExecutor::meanwhile(const std::function<void()>& mainThread)
{
    runningNow = false;
    mainThread();
    runningNow = true;
}

}
