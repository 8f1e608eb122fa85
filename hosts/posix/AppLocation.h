#pragma once

#include "app/AppLocationPolicy.h"

namespace brevanta {

// Where the client runs from, as realpath(3) and statvfs(3) tell now. A path that cannot be resolved stays as it is,
// and the user has an Applications folder only if there is one.
[[nodiscard]] AppLocationPolicy::Context appLocation(const std::filesystem::path& bundle,
    const std::filesystem::path& systemApplications, const std::filesystem::path& userApplications);

}
