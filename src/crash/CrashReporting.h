#pragma once

#include "daemon/StatusConsumer.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace brevanta {

class CrashReporter;
class SystemLog;
struct Url;

struct CrashReportingSettings {
    std::string endpoint; // As in `CrashReporterOptions`; empty for none.
    std::string environment; // What "SENTRY_ENVIRONMENT" holds; empty when it is not set.
    std::string usualEnvironment; // Of a build whose environment says nothing.
    std::string release;
};

// Decides whether crashes are reported, and sees to it that no report carries a secret. Main thread only.
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

    // The token that the service holds is such a secret.
    void consume(const std::shared_ptr<const BlockingStatus>& status) override;
    void serviceFailed(const DaemonFailure&) override { }

private:
    class Secrets;

    Dependencies m_dependencies;
    std::shared_ptr<Secrets> m_secrets; // Shared with the reporter, which may outlive this object.
};

}
