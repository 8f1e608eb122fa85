#pragma once

#include <optional>

namespace brevanta {

// Whether this process's user is in the group of that name: getgroups(2), getgrnam(3). Nothing when there is no such
// group, or it cannot be read. Main thread only.
[[nodiscard]] std::optional<bool> isInGroup(const char* name);

}
