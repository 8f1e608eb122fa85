#pragma once

#include "service/RemovalHandshake.h"
#include "service/RequestLog.h"
#include "service/ServiceError.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta::service {

struct CommandLine {
    enum class Purpose { serve, showHelp, showVersion };

    Purpose purpose = Purpose::serve;
    std::string socketPath {};
    std::optional<std::string> controlPath {};
    std::optional<std::string> scenarioPath {};
    std::optional<std::string> statePath {};
    // What stands for "/": without it a removal changes nothing on disk.
    std::optional<std::string> rootPath {};
    RemovalTimes removalTimes {};
    LogDetail logDetail = LogDetail::none;
    bool takesStandardInput = false;

    [[nodiscard]] static std::expected<CommandLine, ServiceError> parse(const std::vector<std::string>& arguments);
    [[nodiscard]] static std::string_view help();
};

}
