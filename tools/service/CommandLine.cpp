#include "service/CommandLine.h"

#include "service/NumberText.h"

#include <array>
#include <cstddef>
#include <span>

namespace brevanta::service {

static constexpr std::size_t removalTimeCount = 3;

static std::optional<RemovalTimes> parseRemovalTimes(std::span<const std::string> texts)
{
    std::array<double, removalTimeCount> times {};
    if (texts.size() < times.size())
        return std::nullopt;
    for (std::size_t index = 0; index < times.size(); ++index) {
        const auto time = parseNumber(texts[index]);
        if (!time || *time < 0)
            return std::nullopt;
        times[index] = *time;
    }
    return RemovalTimes { .pending = times[0], .committed = times[1], .finishing = times[2] };
}

static bool takesPath(const std::string& argument)
{
    return argument == "--socket" || argument == "--control" || argument == "--scenario" || argument == "--state"
        || argument == "--root";
}

std::expected<CommandLine, ServiceError> CommandLine::parse(const std::vector<std::string>& arguments)
{
    CommandLine result;
    bool hasRemovalTimes = false;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const auto& argument = arguments[index];
        std::optional<std::string> value;
        const auto takesValue = [&] {
            if (index + 1 < arguments.size() && !arguments[index + 1].empty())
                value = arguments[++index];
            return value.has_value();
        };
        if (argument == "--help" || argument == "-h" || argument == "help")
            return CommandLine { .purpose = Purpose::showHelp };
        if (argument == "--version")
            return CommandLine { .purpose = Purpose::showVersion };
        if (argument == "--stdin")
            result.takesStandardInput = true;
        else if (argument == "--log-requests")
            result.logDetail = LogDetail::redacted;
        else if (argument == "--log-requests=full")
            result.logDetail = LogDetail::full;
        else if (argument == "--removal-seconds") {
            const auto times = parseRemovalTimes(std::span(arguments).subspan(index + 1));
            if (!times)
                return fail(argument + " needs three numbers of seconds");
            result.removalTimes = *times;
            hasRemovalTimes = true;
            index += removalTimeCount;
        } else if (!takesPath(argument))
            return fail("unknown argument '" + argument + "'");
        else if (!takesValue())
            return fail(argument + " needs a path");
        else if (argument == "--socket")
            result.socketPath = *value;
        else if (argument == "--control")
            result.controlPath = value;
        else if (argument == "--scenario")
            result.scenarioPath = value;
        else if (argument == "--root")
            result.rootPath = value;
        else
            result.statePath = value;
    }
    if (result.socketPath.empty())
        return fail("--socket PATH is needed");
    if (result.controlPath == result.socketPath)
        return fail("--socket and --control need different paths");
    if (hasRemovalTimes && !result.rootPath)
        return fail("--removal-seconds needs --root");
    return result;
}

std::string_view CommandLine::help()
{
    return R"(Usage: brevanta-service --socket PATH [options]

A stand-in for the blocking service: answers its whole socket protocol, and is driven by commands.

  --socket PATH         answer clients on this Unix-domain socket
  --control PATH        take commands on this Unix-domain socket, one answer line for each line
  --stdin               take commands on standard input, and answer them on standard output
  --scenario FILE       run the commands of a file, each at its time
  --state FILE          count the launches in this file, so that a restarted service is known to be newer
  --root DIRECTORY      carry a removal out on the installation below this directory, and end with it
  --removal-seconds PENDING COMMITTED FINISHING
                        how long such a removal stays in each state (60, 10 and 30)
  --log-requests        print each request on standard output, tokens replaced by their length
  --log-requests=full   the same, tokens and all
  --help                show this text
  --version             show the version

Prints "listening on PATH" when it can be talked to. SIGTERM, SIGINT and the command `quit` end it.
The command `help` lists the commands.
Exit status: 0 ended as told, 1 cannot run, 2 wrong command line or scenario.
)";
}

}
