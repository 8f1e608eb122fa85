#include "filter/FilterManager.h"

#include "base/Executor.h"
#include "filter/ExtensionRecords.h"
#include "platform/Clock.h"
#include "platform/SystemLog.h"

#include <utility>

namespace brevanta {

namespace {

using Kind = LaunchActivationOutcome::Kind;

std::string versionText(const ExtensionRecord& extension)
{
    return extension.shortVersion.value_or("?") + " (" + extension.buildVersion.value_or("?") + ")";
}

FilterRequestEnd endOf(const std::expected<ExtensionRequestResult, FilterError>& result)
{
    if (!result)
        return { .outcome = { .kind = Kind::failed }, .error = result.error() };
    return { .outcome
        = { .kind = *result == ExtensionRequestResult::completed ? Kind::completed : Kind::willCompleteAfterReboot } };
}

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
    if (m_request && !m_request->awaitsApproval && now - m_request->startedAt >= requestTimeout)
        endRequest({ .outcome = { .kind = Kind::failed, .replaced = m_request->replaced } });
    if (m_preferences.mayAsk(now))
        readPreferences(now);
    const bool isDue = !m_properties.askedAt || now - *m_properties.askedAt >= propertiesInterval;
    if (isDue && m_properties.mayAsk(now))
        readProperties(now);
}

void FilterManager::activate(Notify notify)
{
    if (m_request)
        return join(std::move(notify));
    m_activationSubmitted = true;
    const auto number = begin("activate", std::move(notify));
    m_system.requestActivation({
        // The answer is needed at once, and without a request to decide for nothing is replaced.
        .replacing =
            [this, number, life = m_life.watch()](const ExtensionRecord& existing, const ExtensionRecord& bundled) {
                return life.expired() || !isUnderWay(number) ? ExtensionReplacement::cancel
                                                             : replacing(existing, bundled);
            },
        .needsUserApproval = m_life.guard([this, number] {
            if (isUnderWay(number))
                activationParked();
        }),
        .ended = m_life.guard([this, number](const ExtensionResult& result) {
            if (result) // Also when nobody waits for it any more.
                m_needsRestart = *result == ExtensionRequestResult::willCompleteAfterReboot;
            if (isUnderWay(number))
                activationEnded(result);
        }),
    });
}

void FilterManager::configure(Notify notify)
{
    if (m_request)
        return join(std::move(notify));
    const auto number = begin("configure", std::move(notify));
    m_system.enable(m_life.guard([this, number](const std::expected<void, FilterError>& result) {
        if (!isUnderWay(number))
            return;
        if (result)
            endRequest({ .outcome = { .kind = Kind::completed } });
        else
            endRequest({ .outcome = { .kind = Kind::failed }, .error = result.error() });
    }));
}

void FilterManager::remove(Notify completion)
{
    m_log.log("[FilterManager] removing the content filter");
    if (m_request)
        endRequest({ .outcome = { .kind = Kind::skipped } });
    const std::function<void(ExtensionResult)> ended
        = m_life.guard([this, completion = std::move(completion)](
                           const ExtensionResult& result) { removalEnded(result, completion); });
    m_system.removeConfiguration(m_life.guard([this, ended](const std::expected<void, FilterError>& result) {
        if (!result)
            return ended(std::unexpected(result.error()));
        m_system.requestDeactivation({
            .replacing = [](const ExtensionRecord&, const ExtensionRecord&) { return ExtensionReplacement::cancel; },
            .needsUserApproval = [] {},
            .ended = ended,
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
    m_request->replaced = decision == ExtensionReplacement::replace;
    if (decision == ExtensionReplacement::cancel)
        m_request->kept
            = existing.isEnabled ? FilterRequestEnd::Kept::extensionEnabled : FilterRequestEnd::Kept::extensionOff;
    return decision;
}

std::uint64_t FilterManager::begin(const char* purpose, Notify notify)
{
    m_log.log("[FilterManager] asking the system to " + std::string(purpose) + " the content filter");
    m_request = Request { .number = ++m_lastRequest,
        .purpose = purpose,
        .startedAt = m_clock.continuousSeconds(),
        .callers = { std::move(notify) } };
    return m_lastRequest;
}

void FilterManager::join(Notify notify)
{
    m_request->callers.push_back(notify);
    if (!m_request->awaitsApproval)
        return;
    m_mainLoop.post(m_life.guard([this, number = m_request->number, notify = std::move(notify)] {
        if (isUnderWay(number))
            notify({ .outcome = { .kind = Kind::needsUserApproval } });
    }));
}

void FilterManager::activationParked()
{
    m_log.log("[FilterManager] the content filter waits for the user's approval");
    m_request->awaitsApproval = true;
    for (const auto callers = m_request->callers; const auto& notify : callers)
        notify({ .outcome = { .kind = Kind::needsUserApproval } });
    readAnew();
}

void FilterManager::activationEnded(const ExtensionResult& result)
{
    const bool isKept = m_request->kept != FilterRequestEnd::Kept::no;
    if (isKept && !result && result.error().code == FilterSystem::requestCanceledCode)
        return endRequest({ .outcome = { .kind = Kind::skipped }, .kept = m_request->kept });
    auto ended = endOf(result);
    ended.outcome.replaced = m_request->replaced && ended.outcome.kind != Kind::willCompleteAfterReboot;
    endRequest(ended);
}

// What a caller does about the end may begin the next request.
void FilterManager::endRequest(const FilterRequestEnd& end)
{
    const auto request = *std::exchange(m_request, std::nullopt);
    m_log.log("[FilterManager] the request to " + std::string(request.purpose)
        + " the content filter ended: " + describe(end));
    for (const auto& notify : request.callers)
        notify(end);
    readAnew();
}

void FilterManager::removalEnded(const ExtensionResult& result, const Notify& completion)
{
    const bool wasNone = !result && result.error().code == FilterSystem::extensionNotFoundCode;
    const auto ended = endOf(wasNone ? ExtensionResult(ExtensionRequestResult::completed) : result);
    if (ended.outcome.kind != Kind::failed)
        m_needsRestart = ended.outcome.kind == Kind::willCompleteAfterReboot;
    m_log.log("[FilterManager] the request to remove the content filter ended: " + describe(ended));
    completion(ended);
    readAnew();
}

}
