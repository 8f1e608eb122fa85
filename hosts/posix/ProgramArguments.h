#pragma once

#include <expected>
#include <span>
#include <string>
#include <string_view>

namespace brevanta {

enum class ProgramAction { run, showHelp, showVersion };

struct UnknownArgument {
    std::string argument;

    bool operator==(const UnknownArgument&) const = default;
};

// What the command line asks for; `arguments` is without the program's name. The first argument that asks for help or
// the version decides, unless an unknown one stands anywhere.
[[nodiscard]] std::expected<ProgramAction, UnknownArgument> parseProgramArguments(
    std::span<const char* const> arguments);

// Several lines, each with its line feed.
[[nodiscard]] std::string_view programUsage();

}
