#pragma once

#include "platform/WebView.h"

#include <string_view>

namespace brevanta {

// Why there is no page, in plain words for the log: the same for the same error on every host. An error that is not
// known has words of its own; empty for a failure of the client's own, whose reason says it all.
[[nodiscard]] std::string_view plainWords(const WebError& error);

inline constexpr std::string_view contentProcessEndedWords = "the process that shows the page has crashed or was ended";

}
