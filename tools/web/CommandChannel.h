#pragma once

#include "service/FileDescriptor.h"
#include "web/Answer.h"
#include "web/EventSource.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace brevanta::web {

// Lines of commands in, one line of answer out for each, in order. While a command waits, or an answer has not been
// taken, the lines behind it wait too.
class CommandChannel : public std::enable_shared_from_this<CommandChannel> {
public:
    using Run = std::function<void(const std::string& line, const Answer&)>;
    using Ended = std::function<void(const CommandChannel&)>;

    // Both may be the same socket; then `output` stays closed.
    CommandChannel(service::FileDescriptor input, service::FileDescriptor output, Run, Ended);

    // Tells once that it has ended: there is no more input and everything is answered, or nobody takes the answers.
    void start() { advance(); }

private:
    [[nodiscard]] int outputDescriptor() const { return m_output.isOpen() ? m_output.get() : m_input.get(); }
    void watch();
    void handleInput(GIOCondition);
    void receive();
    void advance();
    [[nodiscard]] std::optional<std::string> takeLine();
    void runLine(const std::string&);
    void send();

    service::FileDescriptor m_input;
    service::FileDescriptor m_output;
    Run m_run;
    Ended m_ended;
    EventSource m_inputSource;
    EventSource m_outputSource;
    std::string m_received;
    std::string m_answers;
    bool m_isWaiting = false;
    bool m_isAdvancing = false;
    bool m_hasEnded = false;
    bool m_isBroken = false;
};

}
