#include "crash/CrashReporting.h"

#include "crash/CrashEndpoint.h"
#include "crash/ReportScrubber.h"
#include "daemon/BlockingStatus.h"
#include "platform/CrashReporter.h"
#include "platform/SystemLog.h"
#include "platform/Url.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace brevanta {

// Reports are made on any thread, also while the main thread learns of a token.
class CrashReporting::Secrets {
public:
    void add(const std::string& secret)
    {
        constexpr std::size_t most = 16;
        const std::lock_guard lock(m_mutex);
        if (std::ranges::find(m_secrets, secret) != m_secrets.end())
            return;
        if (m_secrets.size() == most)
            m_secrets.erase(m_secrets.begin());
        m_secrets.push_back(secret);
    }

    [[nodiscard]] std::string scrub(std::string_view key, std::string_view text) const
    {
        if (isSensitiveReportKey(key))
            return std::string(removedFromReport);
        return scrubReport(text, all());
    }

private:
    [[nodiscard]] std::vector<std::string> all() const
    {
        const std::lock_guard lock(m_mutex);
        return m_secrets;
    }

    mutable std::mutex m_mutex;
    std::vector<std::string> m_secrets; // The newest last.
};

CrashReporting::CrashReporting(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_secrets(std::make_shared<Secrets>())
{
}

CrashReporting::~CrashReporting() = default;

void CrashReporting::start(const CrashReportingSettings& settings)
{
    auto& log = m_dependencies.log;
    if (settings.endpoint.empty())
        return log.log("[CrashReporting] no endpoint: crashes are not reported");
    const auto host = crashEndpointHost(m_dependencies.parseUrl(settings.endpoint));
    if (!host)
        return log.log(
            "[CrashReporting] not started: the endpoint cannot be used: " + std::string(describe(host.error())));
    const auto environment = crashEnvironment(settings.environment, settings.usualEnvironment);
    const auto started = m_dependencies.reporter.start({
        .endpoint = settings.endpoint,
        .host = *host,
        .environment = environment,
        .release = settings.release,
        .scrub
        = [secrets = m_secrets](std::string_view key, std::string_view text) { return secrets->scrub(key, text); },
    });
    if (!started)
        return log.log("[CrashReporting] not started: " + started.error().message);
    m_isStarted = true;
    log.log("[CrashReporting] started (host=" + *host + ", environment=" + environment + ")");
}

void CrashReporting::addSecret(const std::string& secret) { m_secrets->add(secret); }

void CrashReporting::capture(const CapturedError& error)
{
    const bool isKnown = std::ranges::find(m_captured, error) != m_captured.end();
    if (!m_isStarted || isKnown || m_captured.size() == mostErrors)
        return;
    m_captured.push_back(error);
    m_dependencies.reporter.capture(error);
}

void CrashReporting::serviceFailed(const DaemonFailure& failure)
{
    const auto* const error = std::get_if<DaemonError>(&failure);
    const bool isUndecodable = error ? error->kind == DaemonError::Kind::invalidResponse
                                     : !std::holds_alternative<JsonSerializationError>(failure);
    if (isUndecodable)
        capture({ .kind = "status", .message = describe(failure) });
}

void CrashReporting::consume(const std::shared_ptr<const BlockingStatus>& status)
{
    if (status->authToken)
        addSecret(*status->authToken);
}

}
