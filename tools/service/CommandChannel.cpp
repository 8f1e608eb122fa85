#include "service/CommandChannel.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace brevanta::service {

// Long enough for a `set` of a list of 200,000 entries.
static constexpr std::size_t longestCommand = 32 * 1024 * 1024;

CommandChannel::CommandChannel(FileDescriptor input, FileDescriptor output)
    : m_input(std::move(input))
    , m_output(std::move(output))
{
}

short CommandChannel::awaitedInputEvents() const
{
    // While the lines behind a waiting command are held back, only the peer's going is of interest.
    const bool isHeldBack = m_command || isSending() || m_hasEnded;
    return isHeldBack ? 0 : POLLIN;
}

bool CommandChannel::isDone() const
{
    return m_isBroken || (m_hasEnded && m_received.empty() && !m_command && !isSending());
}

void CommandChannel::handleInput(short events)
{
    // A hung-up socket can take no more answers; a hung-up pipe may still hold lines to be read.
    const bool isEndOfPipe = events & POLLHUP && m_output.isOpen();
    if (!(events & POLLIN) && !isEndOfPipe) {
        m_isBroken |= (events & (POLLHUP | POLLERR | POLLNVAL)) != 0;
        return;
    }
    std::array<char, 65536> buffer;
    const auto size = ::read(m_input.get(), buffer.data(), buffer.size());
    if (size < 0) {
        m_isBroken |= errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR;
        return;
    }
    m_hasEnded = !size;
    m_received.append(buffer.data(), static_cast<std::size_t>(size));
    if (m_received.size() > longestCommand)
        m_isBroken = true;
}

void CommandChannel::advance(Service& service, const std::function<void()>& carryOutEffect)
{
    send();
    while (!m_isBroken && !isSending() && !service.isQuitting()) {
        if (!m_command) {
            const auto line = takeLine();
            if (!line)
                return;
            start(*line);
        }
        if (m_command)
            runCommand(service);
        if (m_command)
            return;
        carryOutEffect();
        send();
    }
}

std::optional<std::string> CommandChannel::takeLine()
{
    const auto end = m_received.find('\n');
    // The last line may lack its newline.
    if (end == std::string::npos)
        return m_hasEnded && !m_received.empty() ? std::optional(std::exchange(m_received, {})) : std::nullopt;
    auto line = m_received.substr(0, end);
    m_received.erase(0, end + 1);
    return line;
}

void CommandChannel::start(const std::string& line)
{
    auto command = parseCommand(line);
    if (command)
        m_command = std::move(*command);
    else
        m_answers += describeResult(std::unexpected(command.error())) + '\n';
}

void CommandChannel::runCommand(Service& service)
{
    auto result = m_command(service);
    if (result && !*result)
        return;
    m_command = nullptr;
    if (result)
        m_answers += describeResult(std::move(**result)) + '\n';
    else
        m_answers += describeResult(std::unexpected(std::move(result.error()))) + '\n';
}

void CommandChannel::send()
{
    while (isSending()) {
        const auto size = ::write(outputDescriptor(), m_answers.data(), m_answers.size());
        if (size < 0) {
            m_isBroken |= errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR;
            return;
        }
        m_answers.erase(0, static_cast<std::size_t>(size));
    }
}

}
