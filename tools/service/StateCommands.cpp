#include "service/CommandParsers.h"
#include "service/JsonText.h"
#include "service/NumberText.h"

#include <array>

namespace brevanta::service {

using ParsedCommand = std::expected<Command, ServiceError>;

// "none" takes a text away.
static std::optional<std::string> unlessNone(std::string text)
{
    if (text == "none")
        return std::nullopt;
    return text;
}

static std::optional<double> nextNumber(CommandWords& words)
{
    const auto word = words.next();
    return word ? parseNumber(*word) : std::nullopt;
}

static ParsedCommand parseSet(CommandWords& words)
{
    auto key = words.next();
    if (!key || words.isAtEnd())
        return misused();
    auto value = parseJson(words.rest());
    if (!value)
        return std::unexpected(value.error());
    return doing([key = std::move(*key), value = std::move(*value)](
                     Service& service) { service.state().overrideKey(key, value); });
}

static ParsedCommand parseUnset(CommandWords& words)
{
    auto key = words.next();
    if (!key)
        return misused();
    return doing([key = std::move(*key)](Service& service) { service.state().unsetKey(key); });
}

static ParsedCommand parseRestore(CommandWords& words)
{
    auto key = words.next();
    if (!key)
        return misused();
    if (*key == "all")
        return doing([](Service& service) { service.state().restoreAllKeys(); });
    return doing([key = std::move(*key)](Service& service) { service.state().restoreKey(key); });
}

static ParsedCommand parseGet(CommandWords& words)
{
    auto key = words.next();
    if (!key)
        return misused();
    return [key = std::move(*key)](Service& service) -> CommandResult {
        auto value = service.state().replyValue(key);
        if (!value)
            return fail("the reply has no key '" + key + "'");
        return value;
    };
}

static ParsedCommand parseEnergy(CommandWords& words)
{
    const auto energy = nextNumber(words);
    if (!energy)
        return misused();
    return doing([energy = *energy](Service& service) { service.state().setEnergy(energy); });
}

static ParsedCommand parseDrain(CommandWords& words)
{
    const auto drain = nextNumber(words);
    if (!drain || *drain < 0)
        return misused();
    return doing([drain = *drain](Service& service) { service.state().coins().setDrainPerSecond(drain); });
}

static ParsedCommand parseBlock(CommandWords& words)
{
    const auto onOrOff = words.next();
    if (onOrOff == "off")
        return doing([](Service& service) { service.state().unblock(); });
    if (onOrOff != "on" || words.isAtEnd())
        return misused();
    return doing([reason = words.rest()](Service& service) { service.state().block(reason); });
}

static ParsedCommand parseTask(CommandWords& words)
{
    const auto text = words.rest();
    if (text == "none")
        return doing([](Service& service) { service.state().endTask(); });
    // The rate is the last word; all before it is the title.
    const auto gap = text.find_last_of(" \t");
    if (gap == std::string::npos)
        return misused();
    const auto rate = parseNumber(std::string_view(text).substr(gap + 1));
    if (!rate)
        return misused();
    auto title = text.substr(0, text.find_last_not_of(" \t", gap) + 1);
    return doing(
        [title = std::move(title), rate = *rate](Service& service) { service.state().startTask(title, rate); });
}

static ParsedCommand parseList(CommandWords& words)
{
    auto key = words.next();
    const auto word = words.next();
    if (!key || !word)
        return misused();
    const auto count = parseCount(*word, EntryLists::maximumCount);
    if (!EntryLists::isListKey(*key))
        return fail("'" + *key + "' is none of the lists");
    if (!count)
        return fail("'" + *word + "' is not a count from 0 to " + std::to_string(EntryLists::maximumCount));
    return doing(
        [key = std::move(*key), count = *count](Service& service) { service.state().setListCount(key, count); });
}

static ParsedCommand parseToken(CommandWords& words)
{
    const auto what = words.next();
    if (what == "accept")
        return doing([](Service& service) { service.state().credential().acceptAll(); });
    if (what == "reject")
        return doing([](Service& service) { service.state().credential().rejectAll(); });
    if (what == "expire")
        return doing([](Service& service) { service.state().credential().invalidate(); });
    auto token = words.next();
    if (what != "accept-only" || !token)
        return misused();
    return doing([token = std::move(*token)](Service& service) { service.state().credential().acceptOnly(token); });
}

static ParsedCommand parseCredential(CommandWords& words)
{
    const auto what = words.next();
    if (what == "on")
        return doing([](Service& service) { service.state().credential().restore(); });
    if (what == "off")
        return doing([](Service& service) { service.state().credential().forget(); });
    return misused();
}

static ParsedCommand parseVersion(CommandWords& words)
{
    if (words.isAtEnd())
        return misused();
    return doing([version = unlessNone(words.rest())](Service& service) { service.state().setVersion(version); });
}

static ParsedCommand parseBoot(CommandWords& words)
{
    auto bootId = words.next();
    if (!bootId)
        return misused();
    return doing([bootId = std::move(*bootId)](Service& service) { service.state().setBootId(bootId); });
}

static ParsedCommand parseTrack(CommandWords& words)
{
    auto bundleId = words.next();
    if (bundleId == "none")
        return doing([](Service& service) { service.state().endTracking(); });
    const auto seconds = nextNumber(words);
    if (!bundleId || !seconds)
        return misused();
    return doing([bundleId = std::move(*bundleId), seconds = *seconds](
                     Service& service) { service.state().trackApp(bundleId, seconds); });
}

static ParsedCommand parseQueue(CommandWords& words)
{
    const auto kind = noticeKindNamed(words.next().value_or(""));
    if (!kind)
        return misused();
    std::optional<double> lifetime;
    if (words.isNext("for")) {
        (void)words.next();
        lifetime = nextNumber(words);
        if (!lifetime)
            return misused();
    }
    std::optional<nlohmann::json> record;
    if (!words.isAtEnd()) {
        auto parsed = parseJson(words.rest());
        if (!parsed)
            return std::unexpected(parsed.error());
        record = std::move(*parsed);
    }
    return [kind = *kind, lifetime, record = std::move(record)](Service& service) -> CommandResult {
        auto& state = service.state();
        const auto until = lifetime ? std::optional(state.now() + *lifetime) : std::nullopt;
        if (!record)
            return std::to_string(state.notices().addDefault(kind, until));
        state.notices().add(kind, *record, until);
        return std::string();
    };
}

static ParsedCommand parseClear(CommandWords& words)
{
    const auto what = words.next().value_or("");
    if (what == "queues")
        return doing([](Service& service) { service.state().notices().clearAll(); });
    const auto kind = noticeKindNamed(what);
    if (!kind)
        return misused();
    return doing([kind = *kind](Service& service) { service.state().notices().clear(kind); });
}

static ParsedCommand parseFilterAnswer(CommandWords& words)
{
    auto text = words.rest();
    if (text.empty())
        return misused();
    if (text == "none")
        return doing([](Service& service) { service.state().filterReports().keepSilent(); });
    if (text == "auto")
        return doing([](Service& service) { service.state().filterReports().judge(); });
    return doing([text = std::move(text)](Service& service) { service.state().filterReports().alwaysAnswer(text); });
}

std::span<const CommandEntry> stateCommands()
{
    static constexpr std::array entries {
        CommandEntry { "set", "set KEY JSON", "gives a key of the status reply any value", parseSet },
        CommandEntry { "unset", "unset KEY", "leaves a key out of the reply", parseUnset },
        CommandEntry {
            "restore", "restore KEY|all", "the state's own value again, whatever was set or left out", parseRestore },
        CommandEntry { "get", "get KEY", "the key's present value", parseGet },
        CommandEntry { "energy", "energy COINS", "sets the balance", parseEnergy },
        CommandEntry { "drain", "drain COINS-PER-SECOND", "a metered app is in use; 0 ends it", parseDrain },
        CommandEntry { "block", "block on REASON | block off", "blocks whatever the balance; lifts the present block",
            parseBlock },
        CommandEntry { "task", "task TITLE COINS-PER-MINUTE | task none",
            "a task is active and earns; no task any more", parseTask },
        CommandEntry { "list", "list KEY COUNT", "makes one of the long lists so long", parseList },
        CommandEntry { "token", "token accept | reject | accept-only TOKEN | expire",
            "which tokens are taken from now on; the held one becomes invalid", parseToken },
        CommandEntry { "credential", "credential on | credential off", "holds a credential, or none", parseCredential },
        CommandEntry {
            "version", "version TEXT | version none", "the version that the service says it has", parseVersion },
        CommandEntry { "boot", "boot ID", "the name of its run, by which a restart is told", parseBoot },
        CommandEntry { "track", "track BUNDLE-ID SECONDS | track none",
            "an application is tracked, with so much budget; closes all", parseTrack },
        CommandEntry { "queue", "queue reminder|alert|rejection|resume [for SECONDS] [JSON]",
            "queues a notice, a believable one without JSON", parseQueue },
        CommandEntry {
            "clear", "clear queues|reminder|alert|rejection|resume", "empties all queues or one", parseClear },
        CommandEntry { "filter-answer", "filter-answer TEXT | none | auto",
            "the answer to a filter report: always TEXT, none, or by looking at it", parseFilterAnswer },
    };
    return entries;
}

}
