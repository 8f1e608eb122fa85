#include "base/OrderedCalls.h"

#include "base/Executor.h"

#include <utility>

namespace brevanta {

void OrderedCalls::call(std::function<void()> call)
{
    if (m_hasEnded)
        return;
    m_waiting.push_back(std::move(call));
    if (m_holds > 0)
        m_mainThread.post(m_life.guard([this] { callWaiting(); }));
    else
        callWaiting();
}

void OrderedCalls::end()
{
    m_hasEnded = true;
    m_waiting.clear();
}

void OrderedCalls::callWaiting()
{
    if (m_isCalling)
        return; // From inside of a call; the loop below goes on with it.
    m_isCalling = true;
    while (!m_waiting.empty() && m_holds == 0) {
        const auto next = std::move(m_waiting.front());
        m_waiting.pop_front();
        next();
    }
    m_isCalling = false;
}

}
