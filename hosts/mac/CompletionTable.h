#pragma once

#include "platform/MainLoop.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace brevanta {

// The callbacks that wait for completion handlers of the system. Such handlers run on any thread and keep what they
// capture alive there; here a callback stays on the main thread, is called once however often the handler is, and is
// destroyed with the table. Main thread only; the main loop outlives every handler.
template <typename Result> class CompletionTable {
public:
    explicit CompletionTable(MainLoop& mainLoop)
        : m_mainLoop(mainLoop)
    {
    }

    CompletionTable(const CompletionTable&) = delete;
    CompletionTable& operator=(const CompletionTable&) = delete;

    // A function for the handler: any thread may call it, and `onEnd` follows on the main thread.
    [[nodiscard]] std::function<void(Result)> expect(std::function<void(Result)> onEnd)
    {
        const std::uint64_t ticket = m_nextTicket++;
        m_waiting->emplace(ticket, std::move(onEnd));
        return [loop = &m_mainLoop, weak = std::weak_ptr(m_waiting), ticket](Result result) {
            loop->post([weak, ticket, result = std::move(result)] {
                const auto waiting = weak.lock();
                if (!waiting)
                    return;
                if (const auto entry = waiting->extract(ticket); !entry.empty())
                    entry.mapped()(result);
            });
        };
    }

private:
    using Waiting = std::map<std::uint64_t, std::function<void(Result)>>;

    MainLoop& m_mainLoop;
    std::shared_ptr<Waiting> m_waiting { std::make_shared<Waiting>() };
    std::uint64_t m_nextTicket { 0 };
};

}
