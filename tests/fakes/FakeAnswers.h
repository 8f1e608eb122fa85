#pragma once

#include "base/Executor.h"
#include "base/LifeToken.h"

#include <deque>
#include <functional>
#include <utility>

namespace brevanta {

// What a fake answers to one kind of question: `result`, posted to the main loop, or nothing until the test says so.
template <typename Result> class FakeAnswers {
public:
    explicit FakeAnswers(Executor& mainLoop)
        : m_mainLoop(mainLoop)
    {
    }

    void ask(std::function<void(Result)> onEnd)
    {
        ++asked;
        m_waiting.push_back(std::move(onEnd));
        if (!isHeld)
            answerAll();
    }

    // Answers whatever waits with the present result.
    void answerAll()
    {
        while (!m_waiting.empty())
            answerOldest();
    }

    // Answers the oldest question with this.
    void answerOldest(Result answer)
    {
        if (m_waiting.empty())
            return;
        m_mainLoop.post(
            m_life.guard([onEnd = std::move(m_waiting.front()), answer = std::move(answer)] { onEnd(answer); }));
        m_waiting.pop_front();
    }
    void answerOldest() { answerOldest(result); }

    [[nodiscard]] std::size_t waiting() const { return m_waiting.size(); }

    Result result {};
    bool isHeld { false }; // Whether questions wait for `answerAll` or `answerOldest`.
    int asked { 0 };

private:
    Executor& m_mainLoop;
    std::deque<std::function<void(Result)>> m_waiting;
    LifeToken m_life;
};

}
