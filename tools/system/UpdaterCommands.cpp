#include "system/Command.h"

namespace brevanta::system_tool {

namespace {

using Result = StandInStore::Read<UpdaterStandIn>;

constexpr CommandUsage usages[] = {
    { "fresh", "nothing is offered; also in the place of a damaged file" },
    { "offer VERSION", "this version is offered" },
    { "withdraw", "it is offered no longer" },
};

}

std::optional<UpdaterChange> updaterChange(std::span<const std::string> words)
{
    if (words.size() == 1 && words[0] == "fresh")
        return [](const Result&) -> Result { return UpdaterStandIn(); };
    if (words.size() == 1 && words[0] == "withdraw")
        return [](Result current) -> Result {
            if (current)
                current->offered.reset();
            return current;
        };
    if (words.size() != 2 || words[0] != "offer" || words[1].empty())
        return std::nullopt;
    return [version = words[1]](Result current) -> Result {
        if (current)
            current->offered = version;
        return current;
    };
}

std::span<const CommandUsage> updaterUsages() { return usages; }

}
