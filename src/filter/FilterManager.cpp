#include "filter/FilterManager.h"

#include "base/Executor.h"
#include "filter/ExtensionRecords.h"
#include "platform/Clock.h"
#include "platform/SystemLog.h"

#include <utility>

namespace brevanta {

namespace {

std::string describe(const FilterError& error)
{
    return error.domain + " " + std::to_string(error.code) + (error.message.empty() ? "" : ": " + error.message);
}

std::string versionText(const ExtensionRecord& extension)
{
    return extension.shortVersion.value_or("?") + " (" + extension.buildVersion.value_or("?") + ")";
}

}

std::string describe(const FilterRequestEnd& end)
{
    const std::string replaced = end.outcome.replaced ? ", an older extension was replaced" : "";
    switch (end.outcome.kind) {
    case LaunchActivationOutcome::Kind::completed:
        return "completed" + replaced;
    case LaunchActivationOutcome::Kind::failed:
        return "failed" + (end.error ? " (" + describe(*end.error) + ")" : std::string {}) + replaced;
    case LaunchActivationOutcome::Kind::willCompleteAfterReboot:
        return "will complete after a restart of the Mac";
    case LaunchActivationOutcome::Kind::needsUserApproval:
        return "waits for the user's approval";
    case LaunchActivationOutcome::Kind::skipped:
        break;
    }
    return end.kept == FilterRequestEnd::Kept::no ? "skipped" : "skipped, the extension is current";
}

ExtensionReplacement replacementDecision(const ExtensionRecord& existing, const ExtensionRecord& bundled)
{
    const auto order = compareVersions(existing, bundled);
    const bool isCurrent = std::is_gteq(order);
    return isCurrent ? ExtensionReplacement::cancel : ExtensionReplacement::replace;
}

FilterManager::FilterManager(
    FilterSystem& system, Executor& mainLoop, Clock& clock, SystemLog& log, FilterObserver& observer)
    : m_system(system)
    , m_mainLoop(mainLoop)
    , m_clock(clock)
    , m_log(log)
    , m_observer(observer)
{
}

void FilterManager::refresh()
{
    const double now = m_clock.continuousSeconds();
    if (m_preferences.mayAsk(now))
        readPreferences(now);
    const bool isDue = !m_properties.askedAt || now - *m_properties.askedAt >= propertiesInterval;
    if (isDue && m_properties.mayAsk(now))
        readProperties(now);
}

void FilterManager::activate(FilterRequestReason reason, std::function<void(const FilterRequestEnd&)> onEnd)
{
    if (m_request) {
        if (reason == FilterRequestReason::user)
            m_request->reason = reason;
        m_request->callers.push_back(std::move(onEnd));
        if (m_awaitsApproval)
            m_mainLoop.post(m_life.guard(
                [this] { tellCallers({ .outcome = { .kind = LaunchActivationOutcome::Kind::needsUserApproval } }); }));
        return;
    }
    m_log.log("[FilterManager] asking the system to activate the content filter");
    m_activationSubmitted = true;
    m_request = Request { .reason = reason, .callers = { std::move(onEnd) } };
    m_system.requestActivation({
        // The answer is needed at once, and without an object to decide nothing is replaced.
        .replacing =
            [this, life = m_life.watch()](const ExtensionRecord& existing, const ExtensionRecord& bundled) {
                return life.expired() ? ExtensionReplacement::cancel : replacing(existing, bundled);
            },
        .needsUserApproval = m_life.guard([this] { requestParked(); }),
        .ended = m_life.guard(
            [this](const std::expected<ExtensionRequestResult, FilterError>& result) { requestEnded(result); }),
    });
}

void FilterManager::configure()
{
    m_system.enable(m_life.guard([this](const std::expected<void, FilterError>& result) {
        m_log.log(result ? "[FilterManager] the content filter is configured"
                         : "[FilterManager] the content filter could not be configured: " + describe(result.error()));
        readAnew();
    }));
}

void FilterManager::remove()
{
    m_log.log("[FilterManager] removing the content filter");
    m_system.removeConfiguration(m_life.guard([this](const std::expected<void, FilterError>& result) {
        if (!result) {
            m_log.log("[FilterManager] the filter's configuration could not be removed: " + describe(result.error()));
            return readAnew();
        }
        m_system.requestDeactivation({
            .replacing = [](const ExtensionRecord&, const ExtensionRecord&) { return ExtensionReplacement::cancel; },
            .needsUserApproval = [] {},
            .ended = m_life.guard([this](const std::expected<ExtensionRequestResult, FilterError>& end) {
                m_log.log(end ? "[FilterManager] the content filter is removed"
                              : "[FilterManager] the content filter could not be removed: " + describe(end.error()));
                readAnew();
            }),
        });
    }));
}

void FilterManager::launchPolicySubmittedNothing()
{
    m_log.log("[FilterManager] launch policy submitted nothing (no activated extension)");
}

void FilterManager::readPreferences(double now)
{
    const auto number = ++m_preferences.number;
    m_preferences.askedAt = now;
    m_preferences.isOpen = true;
    m_system.loadPreferences(
        m_life.guard([this, now, number](const std::expected<FilterPreferences, FilterError>& preferences) {
            if (number != m_preferences.number)
                return;
            m_preferences.isOpen = false;
            if (preferences)
                m_observer.filterPreferencesRead(*preferences, now);
            else
                m_observer.filterPreferencesFailed(now);
            if (m_onRead)
                m_onRead();
        }));
}

void FilterManager::readProperties(double now)
{
    const auto number = ++m_properties.number;
    m_properties.askedAt = now;
    m_properties.isOpen = true;
    m_system.queryProperties(
        m_life.guard([this, now, number](const std::expected<std::vector<ExtensionRecord>, FilterError>& records) {
            if (number != m_properties.number)
                return;
            m_properties.isOpen = false;
            if (records)
                m_observer.filterPropertiesRead(*records, now);
            else
                m_observer.filterPropertiesFailed(now);
            if (m_onRead)
                m_onRead();
        }));
}

// What was asked before something changed tells of a time that has passed.
void FilterManager::readAnew()
{
    const double now = m_clock.continuousSeconds();
    readPreferences(now);
    readProperties(now);
}

ExtensionReplacement FilterManager::replacing(const ExtensionRecord& existing, const ExtensionRecord& bundled)
{
    const auto decision = replacementDecision(existing, bundled);
    m_log.log("[FilterManager] extension " + versionText(existing) + " is there, " + versionText(bundled)
        + " is bundled: " + (decision == ExtensionReplacement::replace ? "replacing it" : "keeping it"));
    if (!m_request)
        return decision;
    m_request->replaced = decision == ExtensionReplacement::replace;
    if (decision == ExtensionReplacement::cancel)
        m_request->kept
            = existing.isEnabled ? FilterRequestEnd::Kept::extensionEnabled : FilterRequestEnd::Kept::extensionOff;
    return decision;
}

void FilterManager::requestParked()
{
    m_log.log("[FilterManager] the content filter waits for the user's approval");
    m_awaitsApproval = true;
    tellCallers({ .outcome = { .kind = LaunchActivationOutcome::Kind::needsUserApproval } });
    readAnew();
}

void FilterManager::requestEnded(const std::expected<ExtensionRequestResult, FilterError>& result)
{
    if (!m_request)
        return;
    using Kind = LaunchActivationOutcome::Kind;
    m_awaitsApproval = false;
    FilterRequestEnd end { .kept = m_request->kept };
    if (result) {
        end.outcome.kind
            = *result == ExtensionRequestResult::completed ? Kind::completed : Kind::willCompleteAfterReboot;
        end.outcome.replaced = m_request->replaced && end.outcome.kind == Kind::completed;
    } else if (m_request->kept != FilterRequestEnd::Kept::no
        && result.error().code == FilterSystem::requestCanceledCode) {
        end.outcome.kind = Kind::skipped;
    } else {
        end.outcome = { .kind = Kind::failed, .replaced = m_request->replaced };
        end.error = result.error();
    }
    m_log.log("[FilterManager] the request to activate the content filter ended: " + describe(end));
    const bool isToBeConfigured = m_request->reason == FilterRequestReason::user && end.outcome.kind == Kind::completed;
    tellCallers(end);
    m_request.reset();
    if (isToBeConfigured)
        configure();
    else
        readAnew();
}

void FilterManager::tellCallers(const FilterRequestEnd& end)
{
    if (!m_request)
        return;
    for (const auto& caller : std::exchange(m_request->callers, {}))
        caller(end);
}

}
