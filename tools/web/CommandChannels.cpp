#include "web/CommandChannels.h"

namespace brevanta::web {

using service::FileDescriptor;
using service::ListeningSocket;
using service::ServiceError;

std::expected<void, ServiceError> CommandChannels::listen(const std::string& socketPath)
{
    auto socket = ListeningSocket::open(socketPath);
    if (!socket)
        return std::unexpected(socket.error());
    m_socket.emplace(std::move(*socket));
    m_source = EventSource::whenever(m_socket->descriptor(), G_IO_IN, [this](GIOCondition) {
        acceptAll();
        return EventSource::Next::goOn;
    });
    return {};
}

void CommandChannels::acceptAll()
{
    while (auto connection = m_socket->accept())
        add(std::move(*connection), {});
}

void CommandChannels::add(FileDescriptor input, FileDescriptor output)
{
    const auto ended = [this](const CommandChannel& channel) {
        m_channels.remove_if([&](const auto& other) { return other.get() == &channel; });
    };
    m_channels.push_back(std::make_shared<CommandChannel>(std::move(input), std::move(output), m_run, ended));
    const auto channel = m_channels.back();
    channel->start();
}

}
