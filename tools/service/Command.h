#pragma once

#include "service/Service.h"
#include "service/ServiceError.h"

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta::service {

// What a command answers: a text (often empty), an error, or nothing yet, in which case it is to be run again after the
// next event. Only `await` makes anybody wait.
using CommandResult = std::expected<std::optional<std::string>, ServiceError>;

// A command that was found to be well formed. The same commands come from a scenario, the control socket and standard
// input.
using Command = std::function<CommandResult(Service&)>;

[[nodiscard]] std::expected<Command, ServiceError> parseCommand(std::string_view line);

// Whether the command may have to wait, which nobody can do in a scenario.
[[nodiscard]] bool isWaitingCommand(std::string_view line);

// The answer as one line, without its newline: "ok", "ok VALUE" or "error: why". A value of whole lines, which is help,
// comes before its "ok".
[[nodiscard]] std::string describeResult(const std::expected<std::string, ServiceError>&);

// A command in such a help, with its newline. It begins with a space, as no other answer does.
[[nodiscard]] std::string helpLine(std::string_view usage, std::string_view effect);

}
