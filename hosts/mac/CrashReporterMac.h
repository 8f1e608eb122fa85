#pragma once

#include "platform/CrashReporter.h"

namespace brevanta {

// Sentry's Cocoa SDK, version 8 (https://docs.sentry.io/platforms/apple/), which watches until the process ends and
// calls the scrubber on threads of its own. A crash is written to a file and sent by the next start of the application.
class CrashReporterMac final : public CrashReporter {
public:
    [[nodiscard]] std::expected<void, CrashReporterError> start(const CrashReporterOptions& options) override;
    void capture(const CapturedError& error) override;
};

}
