#pragma once

#include "service/ListeningSocket.h"
#include "web/CommandChannel.h"

#include <expected>
#include <list>
#include <memory>
#include <optional>
#include <string>

namespace brevanta::web {

// Everybody who gives commands: the connections to the control socket, and standard input.
class CommandChannels {
public:
    explicit CommandChannels(CommandChannel::Run run)
        : m_run(std::move(run))
    {
    }

    [[nodiscard]] std::expected<void, service::ServiceError> listen(const std::string& socketPath);
    void add(service::FileDescriptor input, service::FileDescriptor output);

private:
    void acceptAll();

    CommandChannel::Run m_run;
    std::optional<service::ListeningSocket> m_socket;
    EventSource m_source;
    std::list<std::shared_ptr<CommandChannel>> m_channels;
};

}
