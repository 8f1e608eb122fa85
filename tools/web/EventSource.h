#pragma once

#include "web/GLibPointers.h"

#include <chrono>
#include <functional>

namespace brevanta::web {

// A source of the default main context for as long as the object lives. The callback may end or replace the object.
class EventSource {
public:
    enum class Next { goOn, end };
    using Callback = std::function<Next(GIOCondition)>;

    EventSource() = default;
    EventSource(EventSource&&) = default;
    EventSource& operator=(EventSource&& other) noexcept
    {
        end();
        m_source = std::move(other.m_source);
        return *this;
    }
    ~EventSource() { end(); }

    // Once, after that time.
    [[nodiscard]] static EventSource after(std::chrono::milliseconds, std::function<void()>);
    // Whenever the descriptor, which has to outlive the source, has one of the events; G_IO_HUP and G_IO_ERR are always
    // told.
    [[nodiscard]] static EventSource whenever(int descriptor, GIOCondition events, Callback);
    [[nodiscard]] static EventSource whenSignalled(int signalNumber, std::function<void()>);

    void end()
    {
        if (m_source)
            g_source_destroy(m_source.get());
        m_source.reset();
    }

private:
    explicit EventSource(GSource* source)
        : m_source(source)
    {
        g_source_attach(source, nullptr);
    }

    GLibPointer<GSource> m_source;
};

}
