#include "posix/ProgramArguments.h"

#include "base/Text.h"

namespace brevanta {

bool isLink(std::string_view text)
{
    constexpr std::string_view beginning = "brevanta:";
    return lowerCased(text.substr(0, beginning.size())) == beginning;
}

std::expected<ProgramRequest, UnknownArgument> parseProgramArguments(std::span<const char* const> arguments)
{
    ProgramRequest request;
    for (const std::string_view argument : arguments) {
        auto asked = ProgramAction::run;
        if (argument == "--help" || argument == "-h")
            asked = ProgramAction::showHelp;
        else if (argument == "--version")
            asked = ProgramAction::showVersion;
        else if (isLink(argument))
            request.links.emplace_back(argument);
        else
            return std::unexpected(UnknownArgument { std::string(argument) });
        if (request.action == ProgramAction::run)
            request.action = asked;
    }
    return request;
}

std::string_view programUsage()
{
    return "Usage: Brevanta [--help | --version | LINK...]\n"
           "\n"
           "Shows what the blocking service does on this computer. Started once more, it opens the window of the\n"
           "one that runs already, or hands the links to it.\n"
           "\n"
           "  -h, --help   show this text\n"
           "  --version    show the version\n"
           "  LINK         open this link, which begins with brevanta:\n";
}

}
