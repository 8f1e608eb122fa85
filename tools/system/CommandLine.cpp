#include "system/CommandLine.h"

#include <algorithm>
#include <array>

namespace brevanta::system_tool {

std::expected<CommandLine, StandInError> CommandLine::parse(
    const std::vector<std::string>& arguments, const std::string& version)
{
    CommandLine result;
    std::size_t index = 0;
    for (; index < arguments.size() && arguments[index].starts_with('-'); ++index) {
        const auto& argument = arguments[index];
        if (argument == "--help" || argument == "-h")
            return CommandLine { .purpose = Purpose::showHelp };
        if (argument == "--version")
            return CommandLine { .purpose = Purpose::showVersion };
        if (argument != "--root")
            return standInError("unknown option '" + argument + "'");
        if (index + 1 >= arguments.size() || arguments[index + 1].empty())
            return standInError("--root needs a path");
        result.root = arguments[++index];
    }
    if (result.root.empty() && std::ranges::equal(std::span(arguments).subspan(index), std::array { "help" }))
        return CommandLine { .purpose = Purpose::showHelp };
    if (result.root.empty())
        return standInError("--root DIR is needed");
    auto command = parseCommand(std::span(arguments).subspan(index), version);
    if (!command)
        return std::unexpected(std::move(command.error()));
    result.command = *std::move(command);
    return result;
}

std::string CommandLine::help()
{
    return "Usage: brevanta-system --root DIR COMMAND\n"
           "\n"
           "Changes what stands for the Mac's system services below a development root, while a client runs there.\n"
           "\n"
        + commandUsage()
        + "\n"
          "  --root DIR    the development root: a folder that is there\n"
          "  --help        show this text\n"
          "  --version     show the version\n"
          "\n"
          "Exit status: 0 done, 1 not possible as things stand, 2 wrong command line.\n";
}

}
