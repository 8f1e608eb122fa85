#pragma once

#include "service/FileDescriptor.h"
#include "service/Misbehaviour.h"
#include "service/Service.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta::service {

// One client and its one request. It never waits by itself: the loop tells it when its descriptor is ready and when a
// pause is over, so that a client that hangs, or is kept hanging, holds up nobody else.
class ClientConnection {
public:
    static constexpr std::size_t longestRequest = 1024 * 1024;

    // The observer is told each request line before it is answered.
    using RequestObserver = std::function<void(const std::string& line)>;

    explicit ClientConnection(FileDescriptor);

    [[nodiscard]] int descriptor() const { return m_descriptor.get(); }
    [[nodiscard]] short awaitedEvents() const;
    [[nodiscard]] std::optional<double> resumesAt() const;
    [[nodiscard]] bool isDone() const { return m_phase == Phase::done; }

    void handleEvents(short events, double now, Service&, const RequestObserver&);
    void handleTime(double now);

private:
    enum class Phase { reading, pausing, sending, hanging, done };

    void read(double now, Service&, const RequestObserver&);
    void take(std::string_view bytes);
    void answer(ReplyPlan, double now);
    void send(double now);

    FileDescriptor m_descriptor;
    Phase m_phase = Phase::reading;
    std::string m_request;
    bool m_isLineComplete = false;
    bool m_isTooLong = false;
    ReplyPlan m_plan;
    std::size_t m_sentBytes = 0;
    std::size_t m_segmentEnd = 0;
    double m_resumesAt = 0;
};

}
