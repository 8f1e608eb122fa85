#pragma once

#include "service/Command.h"
#include "service/CommandWords.h"

#include <span>
#include <string_view>

namespace brevanta::service {

using CommandParser = std::expected<Command, ServiceError> (*)(CommandWords&);

struct CommandEntry {
    std::string_view name;
    std::string_view usage;
    std::string_view effect;
    CommandParser parse;
};

// Commands that change what the service knows, and commands about the traffic with its clients.
[[nodiscard]] std::span<const CommandEntry> stateCommands();
[[nodiscard]] std::span<const CommandEntry> trafficCommands();

// What a parser answers when the words do not fit; the usage is added by parseCommand.
[[nodiscard]] inline std::unexpected<ServiceError> misused() { return fail(""); }

// A command that cannot fail and answers nothing but "ok".
template <typename Action> [[nodiscard]] Command doing(Action action)
{
    return [action = std::move(action)](Service& service) -> CommandResult {
        action(service);
        return std::string();
    };
}

}
