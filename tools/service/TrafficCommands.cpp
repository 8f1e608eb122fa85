#include "service/CommandParsers.h"
#include "service/JsonText.h"
#include "service/NumberText.h"
#include "service/RequestTypes.h"

#include <array>
#include <memory>

namespace brevanta::service {

using ParsedCommand = std::expected<Command, ServiceError>;

static constexpr std::size_t largestExactInteger = (std::size_t(1) << 53) - 1;

static ParsedCommand parseRemovalPending(CommandWords& words)
{
    static constexpr double defaultLifetime = 300;
    const auto word = words.next();
    const auto lifetime = word ? parseNumber(*word) : std::optional(defaultLifetime);
    if (!lifetime)
        return misused();
    return doing([lifetime = *lifetime](
                     Service& service) { service.state().removal().makePending(service.state().epoch(), lifetime); });
}

static ParsedCommand parseRemovalHanging(CommandWords& words)
{
    const auto word = words.next();
    const auto overdue = word ? parseNumber(*word) : std::optional(0.0);
    if (!overdue)
        return misused();
    return doing(
        [overdue = *overdue](Service& service) { service.state().removal().hang(service.state().epoch(), overdue); });
}

static ParsedCommand parseRemovalError(CommandWords& words)
{
    const auto text = words.rest();
    if (text.empty())
        return misused();
    return doing([error = text == "none" ? std::nullopt : std::optional(text)](
                     Service& service) { service.state().removal().setQueueError(error); });
}

static ParsedCommand parseRemovalLaunch(CommandWords& words)
{
    auto launch = words.next();
    const auto order = parseCount(words.next().value_or(""), largestExactInteger);
    if (!launch || !order)
        return misused();
    return doing([launch = std::move(*launch), order = *order](
                     Service& service) { service.state().removal().setLaunch(launch, order); });
}

static ParsedCommand parseRemoval(CommandWords& words)
{
    const auto what = words.next();
    if (what == "none")
        return doing([](Service& service) { service.state().removal().clear(); });
    if (what == "committed")
        return doing([](Service& service) { service.state().removal().commit(service.state().epoch()); });
    if (what == "finishing")
        return doing([](Service& service) { service.state().removal().finish(service.state().epoch()); });
    if (what == "pending")
        return parseRemovalPending(words);
    if (what == "hanging")
        return parseRemovalHanging(words);
    if (what == "error")
        return parseRemovalError(words);
    if (what == "launch")
        return parseRemovalLaunch(words);
    const auto argument = words.next();
    if (what == "requesting" && (argument == "on" || argument == "off"))
        return doing([isOn = argument == "on"](Service& service) { service.state().removal().setRequesting(isOn); });
    if (what == "account" && (argument == "none" || isAccount(argument.value_or("")))) {
        return doing([account = argument == "none" ? std::nullopt : argument](
                         Service& service) { service.state().removal().setServiceAccount(account); });
    }
    return misused();
}

static ParsedCommand parseMisbehave(CommandWords& words)
{
    auto misbehaviour = Misbehaviour::parse(words.remaining());
    if (!misbehaviour)
        return std::unexpected(misbehaviour.error());
    return doing([misbehaviour = std::move(*misbehaviour)](Service& service) { service.misbehave(misbehaviour); });
}

static ParsedCommand parseBehave(CommandWords&)
{
    return doing([](Service& service) { service.behave(); });
}

static ParsedCommand parseAnswer(CommandWords& words)
{
    auto type = words.next();
    auto text = words.rest();
    if (!type || !isRequestType(*type) || text.empty())
        return misused();
    if (text == "none")
        return doing([type = std::move(*type)](Service& service) { service.dropScriptedAnswer(type); });
    const auto reply = parseJson(text);
    if (!reply)
        return std::unexpected(reply.error());
    return doing(
        [type = std::move(*type), reply = jsonText(*reply)](Service& service) { service.scriptAnswer(type, reply); });
}

static ParsedCommand parseRequests(CommandWords&)
{
    return [](Service& service) -> CommandResult { return jsonText(service.requests().counts()); };
}

static ParsedCommand parseLastRequest(CommandWords&)
{
    return [](Service& service) -> CommandResult { return service.requests().lastLine(); };
}

static ParsedCommand parseAwait(CommandWords& words)
{
    auto type = words.next();
    auto word = words.next();
    if (!type || !word || (!isRequestType(*type) && *type != "other"))
        return misused();
    const bool isRelative = word->starts_with('+');
    const auto count = parseCount(std::string_view(*word).substr(isRelative ? 1 : 0), largestExactInteger);
    if (!count)
        return misused();
    // A relative count starts from what has come in when the command is first run; later runs share that start.
    auto start = std::make_shared<std::optional<std::size_t>>();
    return [type = std::move(*type), count = *count, isRelative, start](Service& service) -> CommandResult {
        const auto received = service.requests().countOf(type);
        if (!*start)
            *start = isRelative ? received : 0;
        if (received < **start + count)
            return std::optional<std::string>();
        return std::to_string(received);
    };
}

static ParsedCommand parseHelp(CommandWords&)
{
    return [](Service&) -> CommandResult {
        std::string lines;
        for (const auto commands : { stateCommands(), trafficCommands() }) {
            for (const auto& command : commands)
                lines += helpLine(command.usage, command.effect);
        }
        return lines;
    };
}

static ParsedCommand parseQuit(CommandWords&)
{
    return doing([](Service& service) { service.quit(); });
}

std::span<const CommandEntry> trafficCommands()
{
    static constexpr std::array entries {
        CommandEntry { "removal",
            "removal none | pending [SECONDS] | committed | finishing | hanging [SECONDS] | error TEXT|none"
            " | requesting on|off | account DIGITS|none | launch ID ORDER",
            "moves the removal of the service on", parseRemoval },
        CommandEntry { "misbehave", "misbehave MODE [ARGUMENTS] [on TYPE] [times N]",
            "misbehaves, for instance 'misbehave silence'; tools/service/README.md has all modes", parseMisbehave },
        CommandEntry { "behave", "behave", "ends the misbehaviour", parseBehave },
        CommandEntry { "answer", "answer TYPE JSON | answer TYPE none",
            "a fixed reply to one request type; takes it back", parseAnswer },
        CommandEntry { "requests", "requests", "how many requests have come in, by type", parseRequests },
        CommandEntry { "last-request", "last-request", "the last request as it came", parseLastRequest },
        CommandEntry { "await", "await TYPE COUNT | await TYPE +COUNT",
            "answers once so many requests of the type have come in", parseAwait },
        CommandEntry { "help", "help", "these lines", parseHelp },
        CommandEntry { "quit", "quit", "ends the service", parseQuit },
    };
    return entries;
}

}
