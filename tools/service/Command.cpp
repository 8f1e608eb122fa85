#include "service/Command.h"

#include "service/CommandParsers.h"

#include <algorithm>
#include <array>

namespace brevanta::service {

static const CommandEntry* findCommand(std::string_view name)
{
    for (const auto commands : { stateCommands(), trafficCommands() }) {
        const auto found = std::ranges::find(commands, name, &CommandEntry::name);
        if (found != commands.end())
            return &*found;
    }
    return nullptr;
}

std::expected<Command, ServiceError> parseCommand(std::string_view line)
{
    CommandWords words(line);
    const auto name = words.next();
    if (!name)
        return fail("no command");
    const auto entry = findCommand(*name);
    if (!entry)
        return fail("unknown command '" + *name + "'");
    auto command = entry->parse(words);
    if (command && !words.isAtEnd())
        command = misused();
    if (!command && command.error().message.empty())
        return fail("usage: " + std::string(entry->usage));
    return command;
}

bool isWaitingCommand(std::string_view line) { return CommandWords(line).isNext("await"); }

std::string describeResult(const std::expected<std::string, ServiceError>& result)
{
    if (!result)
        return "error: " + result.error().message;
    return result->empty() ? "ok" : "ok " + *result;
}

}
