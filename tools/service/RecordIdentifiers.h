#pragma once

#include <cstdint>

namespace brevanta::service {

// A client remembers the identifiers of the notices that it has shown, so those of two launches must not meet: each
// launch numbers from a thousand of its own. The remainder keeps every identifier exact in a JSON number.
inline std::int64_t firstIdentifierOfLaunch(std::uint64_t launchOrder)
{
    return static_cast<std::int64_t>(launchOrder % 1'000'000'000) * 1000;
}

}
