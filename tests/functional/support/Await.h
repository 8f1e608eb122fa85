#pragma once

#include <chrono>
#include <functional>

namespace brevanta::functional {

using Milliseconds = std::chrono::milliseconds;

// Serves the default main context until the condition holds; false when the time is up before. The condition is asked
// again after everything that happens there, so what it looks at has to be changed by a source of that context.
[[nodiscard]] bool awaitUntil(const std::function<bool()>& condition, Milliseconds within);

// For conditions outside of this process that nobody announces, such as a process that has gone: asks again and again.
[[nodiscard]] bool awaitByAsking(const std::function<bool()>& condition, Milliseconds within);

// A source of the default main context for as long as the object lives.
class SourceGuard {
public:
    SourceGuard() = default;
    explicit SourceGuard(unsigned id)
        : m_id(id)
    {
    }
    ~SourceGuard() { reset(); }
    SourceGuard(const SourceGuard&) = delete;
    SourceGuard& operator=(const SourceGuard&) = delete;

    void reset(unsigned id = 0);
    // The source has removed itself.
    void forget() { m_id = 0; }

private:
    unsigned m_id { 0 };
};

}
