#pragma once

#include "web/Answer.h"
#include "web/WebServer.h"

#include <functional>
#include <string>

namespace brevanta::web {

// Runs one command; what it does is in force when it is answered. `evaluate` and `await` may be answered later.
void runCommand(WebServer&, const std::function<void()>& quit, const std::string& line, const Answer&);

}
