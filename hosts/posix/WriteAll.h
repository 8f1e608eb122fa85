#pragma once

#include <string_view>

namespace brevanta {

// Writes the bytes in one write(2) where the system takes them at once, and in as many as it needs otherwise. False,
// with errno set, when they could not all be written.
[[nodiscard]] bool writeAll(int descriptor, std::string_view bytes);

}
