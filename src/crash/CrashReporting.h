#pragma once

#include "daemon/StatusConsumer.h"
#include "platform/CrashReporter.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

class SystemLog;
struct Url;

struct CrashReportingSettings {
    std::string endpoint; // As in `CrashReporterOptions`; empty for none.
    std::string environment; // What "SENTRY_ENVIRONMENT" holds; empty when it is not set.
    std::string usualEnvironment; // Of a build whose environment says nothing.
    std::string release;
};

// Decides whether crashes are reported, and which errors; sees to it that no report carries a secret. Main thread only.
class CrashReporting final : public StatusConsumer {
public:
    struct Dependencies {
        CrashReporter& reporter;
        SystemLog& log;
        // As the system reads a URL; nothing when the text is none.
        std::function<std::optional<Url>(const std::string& text)> parseUrl;
    };

    explicit CrashReporting(Dependencies dependencies);
    ~CrashReporting() override;

    // Starts the reporter, once; one line of the log says how that went, and never holds the endpoint's key. Without an
    // endpoint, and with one that cannot be used, nothing is started.
    void start(const CrashReportingSettings& settings);

    // From now on the text is taken out of every report. The last sixteen count; see `shortestSecret`.
    void addSecret(const std::string& secret);

    // Reports the error if the reporter was started: each one once in a process, and no more than a few of them.
    void capture(const CapturedError& error);
    static constexpr std::size_t mostErrors = 16;

    // The token that the service holds is such a secret.
    void consume(const std::shared_ptr<const BlockingStatus>& status) override;
    // A reply that cannot be decoded is such an error.
    void serviceFailed(const DaemonFailure& failure) override;

private:
    class Secrets;

    Dependencies m_dependencies;
    bool m_isStarted { false };
    std::vector<CapturedError> m_captured;
    std::shared_ptr<Secrets> m_secrets; // Shared with the reporter, which may outlive this object.
};

}
