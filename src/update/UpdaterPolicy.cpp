#include "update/UpdaterPolicy.h"

#include "base/Base64.h"
#include "platform/Updater.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

namespace {

using UpdaterPolicy::Command;

constexpr std::size_t keySize = 32; // RFC 8032, section 5.1.5.

constexpr std::array<std::pair<std::string_view, Command>, 4> commands { {
    { "get_updater_state", Command::getState },
    { "set_updater_auto_checks_on", Command::setAutomaticChecksOn },
    { "set_updater_auto_checks_off", Command::setAutomaticChecksOff },
    { "updater_check_now", Command::checkNow },
} };

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view whiteSpace = " \t\n\v\f\r";
    const auto first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) + 1 - first);
}

bool isKey(std::string_view text)
{
    const auto bytes = decodedBase64(trimmed(text));
    return bytes && bytes->size() == keySize;
}

}

std::optional<UpdaterPolicy::Configuration> UpdaterPolicy::configuration(const std::optional<std::string>& feed,
    const std::optional<std::string>& key, const std::function<std::optional<Url>(const std::string&)>& parseUrl)
{
    if (!feed || !key || !isKey(*key))
        return std::nullopt;
    auto url = parseUrl(*feed);
    if (!url)
        return std::nullopt;
    return Configuration { .feedURL = *std::move(url), .publicEDKey = *key };
}

std::optional<Command> UpdaterPolicy::command(std::string_view name)
{
    const auto* const found = std::ranges::find(commands, name, [](const auto& entry) { return entry.first; });
    return found == commands.end() ? std::nullopt : std::optional(found->second);
}

void UpdaterPolicy::perform(Command command, Updater* updater)
{
    if (!updater)
        return;
    switch (command) {
    case Command::getState:
        return;
    case Command::setAutomaticChecksOn:
        return updater->setAutomaticChecks(true);
    case Command::setAutomaticChecksOff:
        return updater->setAutomaticChecks(false);
    case Command::checkNow:
        return updater->checkNow();
    }
}

Json UpdaterPolicy::state(const Updater* updater, const std::string& version)
{
    return { { "available", updater != nullptr }, { "automaticChecks", updater && updater->automaticChecks() },
        { "version", version } };
}

}
