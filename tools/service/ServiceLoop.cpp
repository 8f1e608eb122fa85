#include "service/ServiceLoop.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <csignal>
#include <cstring>
#include <map>
#include <poll.h>
#include <utility>
#include <vector>

namespace brevanta::service {

// Far above what a client opens, and below what a process may.
static constexpr std::size_t mostConnections = 200;
static constexpr std::size_t mostChannels = 20;

// What is waited for, by descriptor.
struct ServiceLoop::Poll {
    void add(int descriptor, short events)
    {
        if (const auto found = indices.find(descriptor); found != indices.end()) {
            entries[found->second].events |= events;
            return;
        }
        indices.emplace(descriptor, entries.size());
        entries.push_back({ .fd = descriptor, .events = events, .revents = 0 });
    }

    [[nodiscard]] short eventsOf(int descriptor) const
    {
        const auto found = indices.find(descriptor);
        return found == indices.end() ? short(0) : entries[found->second].revents;
    }

    std::vector<pollfd> entries;
    std::map<int, std::size_t> indices;
};

ServiceLoop::ServiceLoop(Service& service, Scenario scenario, Options options)
    : m_service(service)
    , m_scenario(std::move(scenario))
    , m_options(std::move(options))
{
    // A client that is gone before its reply must not take the service with it.
    std::signal(SIGPIPE, SIG_IGN);
}

std::expected<void, ServiceError> ServiceLoop::start()
{
    if (m_options.controlPath) {
        auto socket = ListeningSocket::open(*m_options.controlPath);
        if (!socket)
            return std::unexpected(socket.error());
        m_controlSocket.emplace(std::move(*socket));
    }
    if (const auto ran = runScenario(); !ran)
        return ran;
    return openOrCloseSocket();
}

void ServiceLoop::addCommandChannel(FileDescriptor input, FileDescriptor output)
{
    m_channels.emplace_back(std::move(input), std::move(output));
}

std::expected<void, ServiceError> ServiceLoop::run()
{
    while (!m_service.isQuitting()) {
        if (auto turned = turn(-1); !turned)
            return turned;
    }
    return {};
}

std::expected<void, ServiceError> ServiceLoop::turn(int longestWaitMilliseconds)
{
    Poll poll;
    if (m_quitDescriptor >= 0)
        poll.add(m_quitDescriptor, POLLIN);
    if (m_socket && m_connections.size() < mostConnections)
        poll.add(m_socket->descriptor(), POLLIN);
    if (m_controlSocket && m_channels.size() < mostChannels)
        poll.add(m_controlSocket->descriptor(), POLLIN);
    for (const auto& connection : m_connections)
        poll.add(connection.descriptor(), connection.awaitedEvents());
    for (const auto& channel : m_channels) {
        if (channel.isInputWatched())
            poll.add(channel.inputDescriptor(), channel.awaitedInputEvents());
        if (channel.isSending())
            poll.add(channel.outputDescriptor(), POLLOUT);
    }

    const auto timeout = timeoutWithin(longestWaitMilliseconds);
    if (::poll(poll.entries.data(), static_cast<nfds_t>(poll.entries.size()), timeout) < 0 && errno != EINTR)
        return fail(std::string("poll: ") + std::strerror(errno));
    if (m_quitDescriptor >= 0 && poll.eventsOf(m_quitDescriptor))
        m_service.quit();
    if (auto ran = runScenario(); !ran)
        return ran;
    advanceService();
    for (auto& channel : m_channels) {
        if (const auto events = poll.eventsOf(channel.inputDescriptor()))
            channel.handleInput(events);
    }
    // Commands go first: a request that came in beside them then meets what they have set.
    if (auto advanced = advanceChannels(); !advanced)
        return advanced;
    handleConnections(poll);
    acceptChannels();
    acceptConnections();
    // A command may have waited for one of these requests.
    if (auto advanced = advanceChannels(); !advanced)
        return advanced;
    m_channels.remove_if([](const CommandChannel& channel) { return channel.isDone(); });
    // Last, since nothing may be written to an installation that is gone.
    return m_options.removal ? m_options.removal->advance() : std::expected<void, ServiceError>();
}

std::expected<void, ServiceError> ServiceLoop::runScenario()
{
    while (const auto step = m_scenario.takeDue(m_options.clock())) {
        // A step counts from its own time, however late the turn is.
        m_service.advance(std::max(m_service.state().now(), step->at));
        if (const auto result = step->command(m_service); !result)
            return fail(step->origin + ": " + result.error().message);
    }
    return {};
}

std::expected<void, ServiceError> ServiceLoop::openOrCloseSocket()
{
    if (m_service.isRefusingConnections()) {
        m_socket.reset();
        return {};
    }
    if (m_socket)
        return {};
    auto socket = ListeningSocket::open(m_options.socketPath);
    if (!socket)
        return std::unexpected(socket.error());
    m_socket.emplace(std::move(*socket));
    return {};
}

int ServiceLoop::timeoutWithin(int longestWaitMilliseconds) const
{
    std::optional<double> next = m_scenario.nextAt();
    const auto consider = [&next](std::optional<double> at) {
        if (at && (!next || *at < *next))
            next = at;
    };
    for (const auto& connection : m_connections)
        consider(connection.resumesAt());
    if (m_options.removal)
        consider(m_options.removal->nextAt());
    if (!next)
        return longestWaitMilliseconds;
    const double milliseconds = std::ceil(std::max(0.0, *next - m_options.clock()) * 1000);
    const int timeout = milliseconds < INT_MAX ? static_cast<int>(milliseconds) : INT_MAX;
    return longestWaitMilliseconds < 0 ? timeout : std::min(timeout, longestWaitMilliseconds);
}

std::expected<void, ServiceError> ServiceLoop::advanceChannels()
{
    auto result = openOrCloseSocket();
    for (auto& channel : m_channels)
        channel.advance(m_service, [&] { result = openOrCloseSocket(); });
    return result;
}

void ServiceLoop::handleConnections(const Poll& poll)
{
    const auto now = m_service.state().now();
    for (auto& connection : m_connections) {
        const auto observer = [this](const std::string& line) {
            if (m_options.logDetail != LogDetail::none)
                m_options.print(describeRequest(line, m_options.logDetail));
        };
        connection.handleTime(now);
        if (const auto events = poll.eventsOf(connection.descriptor()))
            connection.handleEvents(events, now, m_service, observer);
    }
    m_connections.remove_if([](const ClientConnection& connection) { return connection.isDone(); });
}

void ServiceLoop::acceptChannels()
{
    while (m_controlSocket && m_channels.size() < mostChannels) {
        auto descriptor = m_controlSocket->accept();
        if (!descriptor)
            return;
        m_channels.emplace_back(std::move(*descriptor), FileDescriptor());
    }
}

void ServiceLoop::acceptConnections()
{
    while (m_socket && m_connections.size() < mostConnections) {
        auto descriptor = m_socket->accept();
        if (!descriptor)
            return;
        if (!m_service.takeEarlyClose())
            m_connections.emplace_back(std::move(*descriptor));
    }
}

void ServiceLoop::advanceService() { m_service.advance(std::max(m_service.state().now(), m_options.clock())); }

}
