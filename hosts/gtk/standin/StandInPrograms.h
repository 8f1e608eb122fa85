#pragma once

#include "gtk/standin/StandInError.h"

#include <expected>
#include <filesystem>
#include <string>

namespace brevanta {

// Makes the root ready for scripts that expect a Mac: the folders that every Mac has, and links to the stand-ins of its
// programs in `programs` (the bundle's Contents/StandIns) where a Mac has those. What is there in the place of a link
// is replaced. The error says what could not be made; a folder of the root that leads out of it is one, too.
[[nodiscard]] std::expected<void, StandInError> prepareStandInPrograms(
    const std::filesystem::path& root, const std::filesystem::path& programs);

// The value of PATH with which a shell finds those programs before the machine's own ones.
[[nodiscard]] std::string standInSearchPath(const std::filesystem::path& root);

}
