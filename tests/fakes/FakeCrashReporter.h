#pragma once

#include "platform/CrashReporter.h"

#include <optional>
#include <vector>

namespace brevanta {

// Watches nothing; keeps what it was started with.
class FakeCrashReporter final : public CrashReporter {
public:
    [[nodiscard]] std::expected<void, CrashReporterError> start(const CrashReporterOptions& options) override
    {
        starts.push_back(options);
        if (failure)
            return std::unexpected(*failure);
        return {};
    }

    void capture(const CapturedError& error) override { captured.push_back(error); }

    std::vector<CrashReporterOptions> starts;
    std::vector<CapturedError> captured;
    std::optional<CrashReporterError> failure; // What a start ends with.
};

}
