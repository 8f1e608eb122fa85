#include "system/Command.h"

namespace brevanta::system_tool {

namespace {

using Result = StandInStore::Read<ServiceStandIn>;

constexpr CommandUsage usages[] = {
    { "fresh", "a machine that has never seen the service; also in the place of a damaged file" },
    { "installed", "its program file is there" },
    { "missing", "its program file is not there" },
    { "loaded", "launchd knows it" },
    { "unloaded", "launchd does not know it" },
    { "allowed", "the user allows it to run in the background" },
    { "turned-off", "the user switches it off, and launchd unloads it" },
    { "refuse-bootstrap COUNT", "the next attempts to load it fail with status 5, this often" },
};

template <typename Action> ServiceCommand changing(Action action)
{
    return { .change = [action](const Result& current) -> Result {
                if (!current)
                    return current;
                auto next = *current;
                action(next);
                return next;
            },
        .program = ProgramChange::none };
}

void unload(ServiceStandIn& standIn)
{
    standIn.isLoaded = false;
    standIn.process.reset();
}

std::optional<ServiceCommand> refusal(const std::string& word)
{
    const auto count = word == "0" ? std::optional(0) : positiveNumber(word);
    if (!count)
        return std::nullopt;
    return changing([count = *count](ServiceStandIn& standIn) { standIn.refusals = count; });
}

ServiceCommand changingProgram(ProgramChange program)
{
    return { .change = [](const Result& current) { return current; }, .program = program };
}

}

std::optional<ServiceCommand> serviceCommand(std::span<const std::string> words)
{
    if (words.size() == 2 && words[0] == "refuse-bootstrap")
        return refusal(words[1]);
    if (words.size() != 1)
        return std::nullopt;
    const auto& name = words.front();
    if (name == "fresh")
        return ServiceCommand { [](const Result&) -> Result { return ServiceStandIn(); }, ProgramChange::remove };
    if (name == "installed")
        return changingProgram(ProgramChange::install);
    if (name == "missing")
        return changingProgram(ProgramChange::remove);
    if (name == "loaded")
        return changing([](ServiceStandIn& standIn) { standIn.isLoaded = true; });
    if (name == "unloaded")
        return changing(unload);
    if (name == "allowed")
        return changing([](ServiceStandIn& standIn) { standIn.backgroundItem = BackgroundItem::allowed; });
    if (name == "turned-off") {
        return changing([](ServiceStandIn& standIn) {
            unload(standIn);
            standIn.backgroundItem = BackgroundItem::requiresApproval;
        });
    }
    return std::nullopt;
}

std::span<const CommandUsage> serviceUsages() { return usages; }

}
