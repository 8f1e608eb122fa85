#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace brevanta {

// The icon of the file at this absolute path as a PNG image of `pixels` by `pixels` with transparent margins, up to
// 1024. A bundle has its own, CFBundleIconFile in Contents/Resources, as it stands or with ".svg" or ".png" added; a
// bundle without one has that of programs, and any other file that of its kind, both of which need a display. Empty
// when there is nothing to draw. Main thread only.
[[nodiscard]] std::vector<std::uint8_t> drawFileIcon(const std::string& path, int pixels);

}
