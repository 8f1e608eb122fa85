#pragma once

#include "platform/PathFacts.h"

namespace brevanta {

// Both only look: stat(2), access(2) with the effective user, statvfs(3). Any thread; opens nothing, and so waits for
// no other end of a socket or a pipe.

[[nodiscard]] PathFacts pathFacts(const std::filesystem::path& path);

// Of a folder that is there, or that would be made.
[[nodiscard]] FolderFacts folderFacts(const std::filesystem::path& folder);

}
