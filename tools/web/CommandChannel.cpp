#include "web/CommandChannel.h"

#include "service/Command.h"

#include <array>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace brevanta::web {

using service::FileDescriptor;

static constexpr std::size_t longestCommand = 1024 * 1024;

static GIOCondition combined(GIOCondition first, GIOCondition second)
{
    return static_cast<GIOCondition>(first | second); // NOLINT(clang-analyzer-optin.core.EnumCastOutOfRange)
}

CommandChannel::CommandChannel(FileDescriptor input, FileDescriptor output, Run run, Ended ended)
    : m_input(std::move(input))
    , m_output(std::move(output))
    , m_run(std::move(run))
    , m_ended(std::move(ended))
{
}

void CommandChannel::watch()
{
    const bool isHeldBack = m_isWaiting || !m_answers.empty() || m_hasEnded;
    m_inputSource.end();
    m_outputSource.end();
    const auto guarded = [weak = weak_from_this()](void (CommandChannel::*handler)(GIOCondition)) {
        return [weak, handler](GIOCondition events) {
            if (const auto self = weak.lock())
                (self.get()->*handler)(events);
            return EventSource::Next::goOn;
        };
    };
    // A socket that is held back is watched for its peer's going. A pipe that has ended would tell so for ever.
    if (!isHeldBack)
        m_inputSource
            = EventSource::whenever(m_input.get(), combined(G_IO_IN, G_IO_HUP), guarded(&CommandChannel::handleInput));
    else if (!m_output.isOpen())
        m_inputSource = EventSource::whenever(m_input.get(), G_IO_HUP, guarded(&CommandChannel::handleInput));
    if (!m_answers.empty())
        m_outputSource = EventSource::whenever(outputDescriptor(), G_IO_OUT, [weak = weak_from_this()](GIOCondition) {
            if (const auto self = weak.lock())
                self->advance();
            return EventSource::Next::goOn;
        });
}

void CommandChannel::handleInput(GIOCondition events)
{
    // A hung-up socket takes no more answers; a hung-up pipe may still hold lines to be read.
    const bool isEndOfPipe = events & G_IO_HUP && m_output.isOpen();
    if (events & G_IO_IN || isEndOfPipe)
        receive();
    else
        m_isBroken = true;
    advance();
}

void CommandChannel::receive()
{
    std::array<char, 65536> buffer;
    const auto size = ::read(m_input.get(), buffer.data(), buffer.size());
    if (size < 0) {
        m_isBroken |= errno != EAGAIN && errno != EINTR;
        return;
    }
    m_hasEnded = !size;
    m_received.append(buffer.data(), static_cast<std::size_t>(size));
    if (m_received.size() > longestCommand)
        m_isBroken = true;
}

void CommandChannel::advance()
{
    // A command that is answered at once comes back here while the loop below runs.
    if (m_isAdvancing)
        return;
    const auto self = shared_from_this();
    m_isAdvancing = true;
    send();
    while (!m_isBroken && !m_isWaiting && m_answers.empty()) {
        const auto line = takeLine();
        if (!line)
            break;
        runLine(*line);
        send();
    }
    m_isAdvancing = false;
    const bool isDone = m_hasEnded && m_received.empty() && !m_isWaiting && m_answers.empty();
    if (!m_isBroken && !isDone)
        return watch();
    m_inputSource.end();
    m_outputSource.end();
    if (const auto ended = std::exchange(m_ended, nullptr))
        ended(*this);
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

void CommandChannel::runLine(const std::string& line)
{
    m_isWaiting = true;
    m_run(line, [weak = weak_from_this()](const Result& result) {
        const auto self = weak.lock();
        if (!self)
            return;
        self->m_isWaiting = false;
        self->m_answers += service::describeResult(result) + '\n';
        self->advance();
    });
}

void CommandChannel::send()
{
    while (!m_answers.empty() && !m_isBroken) {
        const auto size = ::write(outputDescriptor(), m_answers.data(), m_answers.size());
        if (size < 0) {
            if (errno == EAGAIN)
                return;
            m_isBroken |= errno != EINTR;
            continue;
        }
        m_answers.erase(0, static_cast<std::size_t>(size));
    }
}

}
