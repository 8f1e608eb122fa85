#pragma once

#include "gtk/standin/StandInStore.h"

#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace brevanta::system_tool {

using FilterChange = StandInStore::Change<FilterStandIn>;
using ServiceChange = StandInStore::Change<ServiceStandIn>;
using AppChange = StandInStore::Change<WorkspaceStandIn>;
using UpdaterChange = StandInStore::Change<UpdaterStandIn>;

enum class ProgramChange { none, install, remove };

struct ServiceCommand {
    ServiceChange change;
    ProgramChange program { ProgramChange::none };
};

struct ShowCommand { };
struct HelpCommand { };

// A command that was found to be well formed. What it cannot do in the state that it meets is an error of its change.
using Command = std::variant<FilterChange, ServiceCommand, AppChange, UpdaterChange, ShowCommand, HelpCommand>;

// `version` is that of the copies of the extension that the command puts there.
[[nodiscard]] std::expected<Command, StandInError> parseCommand(
    std::span<const std::string> words, const std::string& version);

// All commands, one line each, as they are typed.
[[nodiscard]] std::string commandUsage();

// A whole number above 0 in decimal digits; nothing for other words.
[[nodiscard]] std::optional<int> positiveNumber(const std::string& word);

struct CommandUsage {
    std::string_view words;
    std::string_view effect;
};

// Behind `filter`, `service`, `app` and `updater`; nothing for words that are no command.
[[nodiscard]] std::optional<FilterChange> filterChange(std::span<const std::string> words, const std::string& version);
[[nodiscard]] std::span<const CommandUsage> filterUsages();
[[nodiscard]] std::optional<ServiceCommand> serviceCommand(std::span<const std::string> words);
[[nodiscard]] std::span<const CommandUsage> serviceUsages();
[[nodiscard]] std::optional<AppChange> appChange(std::span<const std::string> words);
[[nodiscard]] std::span<const CommandUsage> appUsages();
[[nodiscard]] std::optional<UpdaterChange> updaterChange(std::span<const std::string> words);
[[nodiscard]] std::span<const CommandUsage> updaterUsages();

}
