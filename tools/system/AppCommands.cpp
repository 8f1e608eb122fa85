#include "system/Command.h"

namespace brevanta::system_tool {

namespace {

using Result = StandInStore::Read<WorkspaceStandIn>;

constexpr CommandUsage usages[] = {
    { "fresh", "nothing runs; also in the place of a damaged file" },
    { "launch ID [PID]", "an application with this bundle identifier launches" },
    { "quit ID", "all of its processes terminate" },
};

}

std::optional<AppChange> appChange(std::span<const std::string> words)
{
    if (words.size() == 1 && words[0] == "fresh")
        return [](const Result&) -> Result { return WorkspaceStandIn(); };
    if (words.size() < 2 || words[1].empty())
        return std::nullopt;
    const auto& identifier = words[1];
    if (words[0] == "quit" && words.size() == 2)
        return [identifier](
                   const Result& current) -> Result { return current ? withQuit(*current, identifier) : current; };
    if (words[0] != "launch" || words.size() > 3)
        return std::nullopt;
    const auto processId = words.size() == 3 ? positiveNumber(words[2]) : std::nullopt;
    if (words.size() == 3 && !processId)
        return std::nullopt;
    return [identifier, processId](const Result& current) -> Result {
        return current ? withLaunched(*current, identifier, processId) : current;
    };
}

std::span<const CommandUsage> appUsages() { return usages; }

}
