#pragma once

#include "service/ClientConnection.h"
#include "service/CommandChannel.h"
#include "service/ListeningSocket.h"
#include "service/RemovalExecution.h"
#include "service/Scenario.h"
#include "service/Service.h"

#include <cstddef>
#include <expected>
#include <functional>
#include <list>
#include <optional>
#include <string>

namespace brevanta::service {

// The one thread of the stand-in: waits for whatever happens next on any socket, or for the time of the next scenario
// step or pause, and carries it out.
class ServiceLoop {
public:
    struct Options {
        std::string socketPath;
        std::optional<std::string> controlPath;
        LogDetail logDetail = LogDetail::none;
        // Seconds since the start.
        std::function<double()> clock;
        // Takes the lines of the request log.
        std::function<void(const std::string& line)> print;
        // Carries removals out; without it they stay a matter of the record.
        RemovalExecution* removal = nullptr;
    };

    ServiceLoop(Service&, Scenario, Options);

    // Opens the sockets, and runs the scenario's first steps before any client can be answered.
    [[nodiscard]] std::expected<void, ServiceError> start();

    // Takes commands from one descriptor and answers on another.
    void addCommandChannel(FileDescriptor input, FileDescriptor output);
    // The service quits when the descriptor becomes readable.
    void quitWhenReadable(int descriptor) { m_quitDescriptor = descriptor; }

    // How many clients are connected, those included that are kept waiting.
    [[nodiscard]] std::size_t connectionCount() const { return m_connections.size(); }

    // Waits at most so long for something to happen, and handles it; a negative time stands for "as long as it takes".
    [[nodiscard]] std::expected<void, ServiceError> turn(int longestWaitMilliseconds);
    // Turns until the service is told to quit.
    [[nodiscard]] std::expected<void, ServiceError> run();

private:
    struct Poll;

    [[nodiscard]] std::expected<void, ServiceError> runScenario();
    [[nodiscard]] std::expected<void, ServiceError> openOrCloseSocket();
    [[nodiscard]] int timeoutWithin(int longestWaitMilliseconds) const;
    [[nodiscard]] std::expected<void, ServiceError> advanceChannels();
    void handleConnections(const Poll&);
    void acceptChannels();
    void acceptConnections();
    void advanceService();

    Service& m_service;
    Scenario m_scenario;
    Options m_options;
    std::optional<ListeningSocket> m_socket;
    std::optional<ListeningSocket> m_controlSocket;
    std::list<ClientConnection> m_connections;
    std::list<CommandChannel> m_channels;
    int m_quitDescriptor = -1;
};

}
