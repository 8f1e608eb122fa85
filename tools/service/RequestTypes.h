#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace brevanta::service {

inline constexpr std::array<std::string_view, 5> requestTypes {
    "get_status",
    "set_auth_token",
    "force_sync",
    "queue_removal",
    "cancel_removal",
};

[[nodiscard]] inline bool isRequestType(std::string_view type)
{
    return std::ranges::find(requestTypes, type) != requestTypes.end();
}

}
