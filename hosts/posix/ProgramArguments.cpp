#include "posix/ProgramArguments.h"

namespace brevanta {

std::expected<ProgramAction, UnknownArgument> parseProgramArguments(std::span<const char* const> arguments)
{
    auto action = ProgramAction::run;
    for (const std::string_view argument : arguments) {
        auto asked = ProgramAction::run;
        if (argument == "--help" || argument == "-h")
            asked = ProgramAction::showHelp;
        else if (argument == "--version")
            asked = ProgramAction::showVersion;
        else
            return std::unexpected(UnknownArgument { std::string(argument) });
        if (action == ProgramAction::run)
            action = asked;
    }
    return action;
}

std::string_view programUsage()
{
    return "Usage: Brevanta [--help | --version]\n"
           "\n"
           "Shows what the blocking service does on this computer. Started once more, it opens the window of the\n"
           "one that runs already.\n"
           "\n"
           "  -h, --help   show this text\n"
           "  --version    show the version\n";
}

}
