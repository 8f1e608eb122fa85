#pragma once

#include "platform/Url.h"

#include <optional>
#include <string>

namespace brevanta {

// Takes a URL apart as GLib's GUri does (RFC 3986), with percent-encoded parts decoded. Nothing for a text that is no
// absolute URI.
[[nodiscard]] std::optional<Url> parseUrl(const std::string& text);

}
