#pragma once

#include "base/Json.h"
#include "platform/Url.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

class Updater;

// Decides whether there is an updater at all, and what the page may ask of it.
namespace UpdaterPolicy {

struct Configuration {
    Url feedURL; // Of the list of releases.
    std::string publicEDKey; // As it was read: a 32-byte Ed25519 public key (RFC 8032) in base64.
    bool operator==(const Configuration&) const = default;
};

// From the information dictionary's texts under "SUFeedURL" and "SUPublicEDKey"; nothing unless both are usable. The
// key may have ASCII white space around it. `parseUrl` gives nothing for what is no URL.
[[nodiscard]] std::optional<Configuration> configuration(const std::optional<std::string>& feed,
    const std::optional<std::string>& key, const std::function<std::optional<Url>(const std::string&)>& parseUrl);

enum class Command { getState, setAutomaticChecksOn, setAutomaticChecksOff, checkNow };

// The command that the page names; nothing for any other text.
[[nodiscard]] std::optional<Command> command(std::string_view name);

// Null when there is no updater: then a command does nothing.
void perform(Command command, Updater* updater);

// What the page is told of the updater, of which there may be none. `version` is the application's.
[[nodiscard]] Json state(const Updater* updater, const std::string& version);

}

}
