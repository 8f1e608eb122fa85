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
        return fail("unknown command '" + *name + "' (see help)");
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
    if (result->ends_with('\n'))
        return *result + "ok";
    return result->empty() ? "ok" : "ok " + *result;
}

std::string helpLine(std::string_view usage, std::string_view effect)
{
    constexpr std::size_t column = 44;
    const auto gap
        = usage.size() < column ? std::string(column - usage.size(), ' ') : '\n' + std::string(column + 2, ' ');
    return "  " + std::string(usage) + gap + std::string(effect) + '\n';
}

}
