#pragma once

#include "system/Command.h"

#include <expected>
#include <filesystem>
#include <string>
#include <vector>

namespace brevanta::system_tool {

struct CommandLine {
    enum class Purpose { run, showHelp, showVersion };

    Purpose purpose { Purpose::run };
    std::filesystem::path root {};
    Command command { ShowCommand {} };

    // `version` as in parseCommand.
    [[nodiscard]] static std::expected<CommandLine, StandInError> parse(
        const std::vector<std::string>& arguments, const std::string& version);
    [[nodiscard]] static std::string help();
};

}
