#pragma once

#include "base/LifeToken.h"

#include <deque>
#include <functional>

namespace brevanta {

class Executor;

// Calls to a delegate, in their order, and never from inside of what holds them back. Main thread only.
class OrderedCalls {
public:
    explicit OrderedCalls(Executor& mainThread)
        : m_mainThread(mainThread)
    {
    }

    // Held by each method that the delegate must not be called from.
    class Hold {
    public:
        explicit Hold(OrderedCalls& calls)
            : m_calls(calls)
        {
            ++m_calls.m_holds;
        }
        ~Hold() { --m_calls.m_holds; }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        OrderedCalls& m_calls;
    };

    // Calls at once, or from the main loop when something holds calls back.
    void call(std::function<void()> call);

    // Drops what waits, and everything that comes from now on.
    void end();

private:
    void callWaiting();

    Executor& m_mainThread;
    std::deque<std::function<void()>> m_waiting;
    int m_holds { 0 };
    bool m_isCalling { false };
    bool m_hasEnded { false };
    LifeToken m_life;
};

}
