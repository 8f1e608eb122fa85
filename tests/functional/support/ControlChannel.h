#pragma once

#include "support/Await.h"

#include <expected>
#include <string>

namespace brevanta::functional {

// Tells a stand-in one command over the Unix socket on which it takes them: what follows "ok" in its answer, or what
// follows "error: ".
[[nodiscard]] std::expected<std::string, std::string> sendCommand(
    const std::string& socketPath, const std::string& line, Milliseconds within);

}
