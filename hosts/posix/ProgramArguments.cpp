#include "posix/ProgramArguments.h"

#include "base/Text.h"

#include <algorithm>

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
        else if (argument == "--diagnose")
            asked = ProgramAction::diagnose;
        else if (argument == "--json")
            request.format = DiagnosisFormat::json;
        else if (isLink(argument))
            request.links.emplace_back(argument);
        else
            return std::unexpected(UnknownArgument { std::string(argument) });
        if (request.action == ProgramAction::run)
            request.action = asked;
    }
    const bool asksToDiagnose
        = std::ranges::any_of(arguments, [](std::string_view argument) { return argument == "--diagnose"; });
    if (request.format == DiagnosisFormat::json && !asksToDiagnose)
        return std::unexpected(UnknownArgument { "--json" });
    return request;
}

std::string_view programUsage()
{
    return "Usage: Brevanta [--help | --version | --diagnose [--json] | LINK...]\n"
           "\n"
           "Shows what the blocking service does on this computer. Started once more, it opens the window of the\n"
           "one that runs already, or hands the links to it.\n"
           "\n"
           "  -h, --help   show this text\n"
           "  --version    show the version\n"
           "  --diagnose   say how the client, the blocking service and the content filter are, and what to do;\n"
           "               with --json for programs. The exit status is 0 when all is well, or else 1\n"
           "  LINK         open this link, which begins with brevanta:\n";
}

}
