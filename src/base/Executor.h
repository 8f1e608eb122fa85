#pragma once

#include <functional>

namespace brevanta {

// Somewhere that work runs: the main thread or a serial queue.
class Executor {
public:
    virtual ~Executor() = default;

    // Queues `work` and returns at once; it never runs inside this call, and pieces of work run one at a time in the
    // order in which they were posted. May be called from any thread. Work that is still queued when the executor ends
    // is destroyed without having run.
    virtual void post(std::function<void()> work) = 0;
};

}
