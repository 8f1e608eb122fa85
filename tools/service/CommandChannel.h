#pragma once

#include "service/Command.h"
#include "service/FileDescriptor.h"
#include "service/Service.h"

#include <functional>
#include <optional>
#include <string>

namespace brevanta::service {

// Lines of commands in, one line of answer out for each, in order. While a command waits, or an answer has not been
// taken, the lines behind it wait too.
class CommandChannel {
public:
    // Both may be the same socket; then `output` stays closed.
    CommandChannel(FileDescriptor input, FileDescriptor output);

    [[nodiscard]] int inputDescriptor() const { return m_input.get(); }
    [[nodiscard]] int outputDescriptor() const { return m_output.isOpen() ? m_output.get() : m_input.get(); }
    // A pipe that has ended reports so for ever, so it is not to be watched any longer.
    [[nodiscard]] bool isInputWatched() const { return !(m_hasEnded && m_output.isOpen()); }
    [[nodiscard]] short awaitedInputEvents() const;
    [[nodiscard]] bool isSending() const { return !m_answers.empty(); }
    [[nodiscard]] bool isDone() const;

    void handleInput(short events);
    // Runs what can be run, and sends what can be sent. The effect is carried out between a command and its answer, so
    // that whoever has read the answer finds it in force.
    void advance(Service&, const std::function<void()>& carryOutEffect);

private:
    [[nodiscard]] std::optional<std::string> takeLine();
    void start(const std::string& line);
    void runCommand(Service&);
    void send();

    FileDescriptor m_input;
    FileDescriptor m_output;
    std::string m_received;
    std::string m_answers;
    Command m_command;
    bool m_hasEnded = false;
    bool m_isBroken = false;
};

}
