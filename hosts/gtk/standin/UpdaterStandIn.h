#pragma once

#include "gtk/standin/StandInError.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

// What stands for the feed of releases, and for what the user has set. As it is made, nothing is offered.
struct UpdaterStandIn {
    bool checksAutomatically { true };
    std::optional<std::string> offered {}; // A version that is newer than the client's, whatever it is; never empty.

    bool operator==(const UpdaterStandIn&) const = default;
};

// An object of JSON; tools/system/README.md shows it.
[[nodiscard]] std::expected<UpdaterStandIn, StandInError> decodeUpdaterStandIn(std::string_view text);
[[nodiscard]] std::string encode(const UpdaterStandIn& standIn);

}
