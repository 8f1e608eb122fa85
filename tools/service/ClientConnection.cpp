#include "service/ClientConnection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

namespace brevanta::service {

// A client that floods the service has to let others have a turn.
static constexpr int readsPerTurn = 16;

ClientConnection::ClientConnection(FileDescriptor descriptor)
    : m_descriptor(std::move(descriptor))
{
}

short ClientConnection::awaitedEvents() const
{
    switch (m_phase) {
    case Phase::reading:
        return POLLIN;
    case Phase::sending:
        return POLLOUT;
    case Phase::pausing:
    case Phase::hanging:
    case Phase::done:
        // A client that goes is reported without being asked for.
        return 0;
    }
    return 0;
}

std::optional<double> ClientConnection::resumesAt() const
{
    if (m_phase != Phase::pausing)
        return std::nullopt;
    return m_resumesAt;
}

void ClientConnection::handleEvents(short events, double now, Service& service, const RequestObserver& observer)
{
    if (m_phase == Phase::reading && events & (POLLIN | POLLHUP | POLLERR))
        read(now, service, observer);
    else if (m_phase == Phase::sending && events & (POLLOUT | POLLHUP | POLLERR))
        send(now);
    else if (events & (POLLHUP | POLLERR | POLLNVAL))
        m_phase = Phase::done;
}

void ClientConnection::handleTime(double now)
{
    if (m_phase == Phase::pausing && now >= m_resumesAt)
        m_phase = Phase::sending;
}

void ClientConnection::read(double now, Service& service, const RequestObserver& observer)
{
    std::array<char, 65536> buffer;
    bool hasEnded = false;
    for (int count = 0; count < readsPerTurn && !m_isLineComplete && !hasEnded; ++count) {
        const auto size = ::recv(m_descriptor.get(), buffer.data(), buffer.size(), 0);
        if (size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR))
            return;
        if (size > 0)
            take({ buffer.data(), static_cast<std::size_t>(size) });
        else
            hasEnded = true;
    }
    if (!m_isLineComplete && !hasEnded)
        return;
    if (m_isTooLong)
        return answer(service.refuseRequest("request too long"), now);
    if (m_isLineComplete) {
        observer(m_request);
        return answer(service.answer(m_request), now);
    }
    if (m_request.empty())
        m_phase = Phase::done;
    else
        answer(service.refuseRequest("request without a newline"), now);
}

// Keeps what belongs to the request. One that is too long is still read to its end, or its sender could never finish
// sending and hear why it was refused.
void ClientConnection::take(std::string_view bytes)
{
    const auto end = bytes.find('\n');
    m_isLineComplete = end != std::string_view::npos;
    const auto part = bytes.substr(0, end);
    if (m_request.size() + part.size() > longestRequest)
        m_isTooLong = true;
    else
        m_request += part;
}

void ClientConnection::answer(ReplyPlan plan, double now)
{
    m_plan = std::move(plan);
    m_segmentEnd = std::min(m_plan.segmentBytes, m_plan.bytes.size());
    m_resumesAt = now + m_plan.delaySeconds;
    m_phase = Phase::pausing;
    if (m_plan.delaySeconds <= 0)
        send(now);
}

void ClientConnection::send(double now)
{
    m_phase = Phase::sending;
    while (m_sentBytes < m_segmentEnd) {
        const auto size = ::send(m_descriptor.get(), m_plan.bytes.data() + m_sentBytes, m_segmentEnd - m_sentBytes, 0);
        if (size < 0) {
            if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)
                m_phase = Phase::done;
            return;
        }
        m_sentBytes += static_cast<std::size_t>(size);
    }
    if (m_sentBytes == m_plan.bytes.size()) {
        m_phase = m_plan.ending == ReplyPlan::Ending::hang ? Phase::hanging : Phase::done;
        return;
    }
    m_segmentEnd += std::min(m_plan.segmentBytes, m_plan.bytes.size() - m_segmentEnd);
    m_resumesAt = now + m_plan.pauseSeconds;
    m_phase = Phase::pausing;
}

}
