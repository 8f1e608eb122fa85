#include "system/Command.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace brevanta::system_tool {

namespace {

std::string usageLine(std::string command, std::string_view effect)
{
    constexpr std::size_t column = 48;
    command.resize(std::max(command.size(), column), ' ');
    return "  " + command + ' ' + std::string(effect) + '\n';
}

std::string usageLines(const std::string& subject, std::span<const CommandUsage> usages)
{
    std::string lines;
    for (const auto& [words, effect] : usages)
        lines += usageLine(subject + ' ' + std::string(words), effect);
    return lines;
}

std::string joined(std::span<const std::string> words)
{
    std::string line;
    for (const auto& word : words)
        line += (line.empty() ? "" : " ") + word;
    return line;
}

}

std::expected<Command, StandInError> parseCommand(std::span<const std::string> words, const std::string& version)
{
    if (words.empty())
        return standInError("no command");
    const auto& subject = words.front();
    const auto rest = words.subspan(1);
    if (subject == "show" && rest.empty())
        return ShowCommand {};
    if (subject == "help" && rest.empty())
        return HelpCommand {};
    if (subject == "filter") {
        if (auto change = filterChange(rest, version))
            return *std::move(change);
    } else if (subject == "service") {
        if (auto command = serviceCommand(rest))
            return *std::move(command);
    } else if (subject == "app") {
        if (auto change = appChange(rest))
            return *std::move(change);
    } else if (subject == "updater") {
        if (auto change = updaterChange(rest))
            return *std::move(change);
    }
    return standInError("unknown command '" + joined(words) + "'");
}

std::optional<int> positiveNumber(const std::string& word)
{
    int number = 0;
    const auto* const end = word.data() + word.size();
    const auto parsed = std::from_chars(word.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end && number > 0 ? std::optional(number) : std::nullopt;
}

std::string commandUsage()
{
    return usageLines("filter", filterUsages()) + usageLines("service", serviceUsages())
        + usageLines("app", appUsages()) + usageLines("updater", updaterUsages()) + usageLine("show", "print all of it")
        + usageLine("help", "these lines");
}

}
