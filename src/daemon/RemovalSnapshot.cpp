#include "daemon/RemovalSnapshot.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace brevanta {

namespace {

constexpr std::uint64_t counterLimit = 1ULL << 53U; // What a JavaScript page can still hold exactly.
constexpr std::size_t longestLaunch = 64;
constexpr std::size_t longestAccount = 32;

constexpr std::array knownOrigins { "in_app", "app_missing" };
constexpr std::array knownQueueErrors { "no_credential", "credential_invalid", "rejected", "unavailable", "committed",
    "not_pending", "credential_changed", "refreshed", "account_mismatch", "account_not_synced" };

template <typename Value>
std::optional<Value> read(json::Object object, std::string_view key, std::optional<Value> (*convert)(json::Element))
{
    const auto element = json::member(object, key);
    return element ? convert(*element) : std::nullopt;
}

std::optional<RemovalSnapshot::State> readState(json::Object object)
{
    using State = RemovalSnapshot::State;
    constexpr std::array<std::pair<std::string_view, State>, 4> states { { { "none", State::none },
        { "pending", State::pending }, { "committed", State::committed }, { "finishing", State::finishing } } };
    const auto name = read(object, "state", json::asText);
    const auto found = std::ranges::find_if(states, [&](const auto& state) { return name == state.first; });
    return found == states.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::uint64_t> readCounter(json::Object object, std::string_view key, std::uint64_t least)
{
    const auto counter = read(object, key, json::asUint64);
    return counter && *counter >= least && *counter < counterLimit ? counter : std::nullopt;
}

std::optional<double> readInstant(json::Object object, std::string_view key)
{
    const auto seconds = read(object, key, json::asDouble); // JSON has no infinity and no not-a-number.
    return seconds && *seconds > 0 ? seconds : std::nullopt;
}

std::optional<std::string> readText(json::Object object, std::string_view key)
{
    const auto text = read(object, key, json::asText);
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

std::optional<std::string> readQueueError(json::Object object)
{
    auto error = readText(object, "queue_error");
    if (error && std::ranges::find(knownQueueErrors, *error) == knownQueueErrors.end())
        return "unavailable";
    return error;
}

std::optional<std::string> keepIf(std::optional<std::string> text, bool keep)
{
    return keep ? std::move(text) : std::nullopt;
}

}

bool isRemovalAccount(std::string_view text)
{
    return !text.empty() && text.size() <= longestAccount
        && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

std::optional<RemovalSnapshot> RemovalSnapshot::decode(json::Element element)
{
    const auto object = json::asObject(element);
    if (!object)
        return std::nullopt;
    const auto state = readState(*object);
    auto launch = readText(*object, "launch");
    const auto launchOrder = readCounter(*object, "launch_order", 1);
    const auto seq = readCounter(*object, "seq", 1);
    if (!state || !launch || launch->empty() || codePointCount(*launch) > longestLaunch || !launchOrder || !seq)
        return std::nullopt;

    auto origin = readText(*object, "origin");
    const bool originKnown = origin && std::ranges::find(knownOrigins, *origin) != knownOrigins.end();
    auto account = readText(*object, "account");
    const bool accountValid = account && isRemovalAccount(*account);
    const auto actionId = readCounter(*object, "action_id", 0);
    return RemovalSnapshot {
        .state = *state,
        .origin = keepIf(std::move(origin), originKnown),
        .expiresAt = readInstant(*object, "expires_at"),
        .actionId = actionId ? std::optional(static_cast<std::int64_t>(*actionId)) : std::nullopt,
        .queueError = readQueueError(*object),
        .requesting = read(*object, "requesting", json::asBool).value_or(false),
        .account = keepIf(std::move(account), accountValid),
        .launch = std::move(*launch),
        .launchOrder = *launchOrder,
        .seq = *seq,
        .finishingBy = readInstant(*object, "finishing_by"),
        .blockingOff = read(*object, "blocking_off", json::asBool).value_or(false),
    };
}

RemovalStatusField RemovalStatusField::decode(json::Object reply)
{
    const auto element = json::member(reply, "removal");
    return { element ? RemovalSnapshot::decode(*element) : std::nullopt };
}

}
