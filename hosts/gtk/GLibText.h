#pragma once

#include <string>
#include <string_view>

namespace brevanta {

// The text with every byte that is not UTF-8, and every NUL, replaced by U+FFFD: GLib and GTK take nothing else.
[[nodiscard]] std::string validUtf8(std::string_view text);

// A label on which GTK underlines nothing: it reads "_x" as an underlined x, and "__" as one underscore.
[[nodiscard]] std::string withoutMnemonics(std::string_view text);

}
