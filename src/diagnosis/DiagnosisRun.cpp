#include "diagnosis/DiagnosisRun.h"

#include "crash/CrashEndpoint.h"
#include "daemon/BlockingStatus.h"
#include "daemon/DaemonClient.h"
#include "daemon/SharedBlockState.h"
#include "daemon/SocketTransport.h"
#include "filter/ComponentLabels.h"
#include "filter/ExtensionRecords.h"
#include "filter/OffNoticeTracker.h"
#include "platform/Clock.h"
#include "platform/LocalSocket.h"
#include "platform/MainLoop.h"
#include "platform/UserDefaults.h"
#include "update/UpdaterPolicy.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

DiagnosisRun::DiagnosisRun(DiagnosisPorts ports, BuildConfiguration configuration, End onEnd)
    : m_ports(std::move(ports))
    , m_configuration(std::move(configuration))
    , m_onEnd(std::move(onEnd))
    , m_open { Question::status, Question::backgroundItem, Question::preferences, Question::properties,
        Question::loginItem, Question::notifications }
{
    m_service.bundledVersion = m_configuration.version;
}

DiagnosisRun::~DiagnosisRun() = default;

void DiagnosisRun::start()
{
    m_startedAt = m_ports.clock.continuousSeconds();
    m_limit = m_ports.mainLoop.startTimer(timeLimit, TimerRepeat::once, [this] {
        // The exchange's thread is let go, so that the process can end.
        m_ports.localSockets.interrupt();
        end();
    });
    askService();
    askFilter();
    m_ports.loginItem.readStatus(m_life.guard([this](LoginItemStatus status) {
        m_facts.loginItem = status;
        answered(Question::loginItem);
    }));
    m_ports.getNotificationAuthorization(m_life.guard([this](NotificationAuthorization authorization) {
        m_facts.notifications = authorization;
        answered(Question::notifications);
    }));
    readFiles();
}

void DiagnosisRun::askService()
{
    m_ports.services.readBackgroundItem(m_life.guard([this](BackgroundItem item) {
        m_facts.backgroundItem = item;
        m_service.recordBackgroundItem(item, m_startedAt);
        answered(Question::backgroundItem);
    }));
    m_daemonClient = std::make_unique<DaemonClient>(
        std::make_unique<SocketTransport>(m_configuration.socketPath, m_ports.localSockets), m_ports.daemonQueue,
        m_ports.mainLoop);
    m_daemonClient->getStatus(std::nullopt, m_life.guard([this](const auto& status) {
        statusArrived(status);
        answered(Question::status);
    }));
}

void DiagnosisRun::statusArrived(const std::expected<std::shared_ptr<const BlockingStatus>, DaemonFailure>& status)
{
    if (status) {
        const auto& answer = **status;
        m_facts.contact = DiagnosisFacts::Answer { .version = answer.daemonVersion,
            .isSignedIn = answer.hasDeviceToken.value_or(true) && !answer.authTokenInvalid.value_or(false) };
        m_service.recordSuccess(answer.daemonVersion, m_startedAt);
        if (answer.authToken)
            m_secrets.push_back(*answer.authToken);
        return;
    }
    const bool isThere = m_ports.files.stamp(m_configuration.socketPath).has_value();
    if (isThere)
        m_facts.contact = status.error();
    else
        m_facts.contact = DiagnosisFacts::NoSocket {};
    m_service.recordFailure(DaemonHealth::kindOf(status.error()), m_ports.services.isProgramInstalled(), m_startedAt);
}

void DiagnosisRun::askFilter()
{
    m_ports.filterSystem.loadPreferences(
        m_life.guard([this](const std::expected<FilterPreferences, FilterError>& preferences) {
            if (preferences) {
                m_preferences = *preferences;
                m_filter.config = FilterHealth::Enabled { preferences->isEnabled, m_startedAt };
            } else {
                m_filter.config = FilterHealth::ConfigFailed { m_startedAt };
            }
            answered(Question::preferences);
        }));
    m_ports.filterSystem.queryProperties(
        m_life.guard([this](const std::expected<std::vector<ExtensionRecord>, FilterError>& records) {
            if (records)
                m_filter.recordProperties(*records, m_startedAt);
            else
                m_filter.recordPropertiesFailure(m_startedAt, m_startedAt);
            answered(Question::properties);
        }));
}

void DiagnosisRun::readFiles()
{
    m_facts.version = m_configuration.version;
    m_facts.bundledServiceVersion = m_configuration.version;
    m_facts.home = m_ports.home;
    m_facts.socketPath = m_configuration.socketPath;
    m_facts.location = m_ports.location();
    m_facts.sharedState = sharedState();
    m_facts.nativeMessaging = inspectNativeMessaging(m_ports.files,
        { .mode = m_configuration.flavour == Flavour::dev ? NativeMessagingPolicy::Mode::dev
                                                          : NativeMessagingPolicy::Mode::prod,
            .root = m_configuration.root,
            .home = m_ports.home,
            .bundle = m_ports.bundle });
    if (m_ports.confinedBrowsers)
        m_facts.confinedBrowsers = m_ports.confinedBrowsers();
    m_facts.sounds = inspectNotificationSounds(m_ports.files, m_ports.resources, m_ports.home);
    m_facts.updates = { .feed = m_ports.updaterFeed,
        .isUsable
        = UpdaterPolicy::configuration(m_ports.updaterFeed, m_ports.updaterKey, m_ports.parseUrl).has_value() };
    m_facts.reportsCrashes = crashEndpointHost(m_ports.parseUrl(m_configuration.crashEndpoint)).has_value();
    m_facts.lastService = lastConclusive(m_ports.defaults, ProtectiveComponent::blockingService);
    m_facts.lastFilter = lastConclusive(m_ports.defaults, ProtectiveComponent::contentFilter);
}

std::optional<DiagnosisFacts::SharedState> DiagnosisRun::sharedState() const
{
    using Condition = DiagnosisFacts::SharedState::Condition;
    const auto container = m_ports.sharedContainer();
    if (!container)
        return std::nullopt;
    const auto file = *container / sharedBlockStateFileName(m_configuration.flavour == Flavour::dev ? "dev" : "prod");
    // The client makes a folder that is missing.
    if (m_ports.files.isFolder(*container) && !m_ports.files.isWritableFolder(*container))
        return DiagnosisFacts::SharedState { .file = file, .condition = Condition::notWritable };
    return DiagnosisFacts::SharedState { .file = file,
        .condition = m_ports.files.stamp(file) ? Condition::there : Condition::missing };
}

void DiagnosisRun::answered(Question question)
{
    m_open.erase(question);
    if (m_open.empty())
        end();
}

// All verdicts are those of the moment at which the questions were asked: a slow answer does not make another one old.
void DiagnosisRun::end()
{
    if (std::exchange(m_isOver, true))
        return;
    m_limit.reset();
    if (m_open.contains(Question::status))
        m_service.recordFailure(
            DaemonHealth::PollFailure::badReply, m_ports.services.isProgramInstalled(), m_startedAt);
    m_facts.service = m_service.state(m_startedAt);
    m_facts.filter = m_filter.status(m_startedAt);
    m_facts.filterLine = filterLine(filterLineFacts(m_filter, m_preferences, m_startedAt));
    if (const auto* const records = lastRecords(m_filter)) {
        const auto active = std::ranges::find_if(records->records, isActive);
        if (active != records->records.end())
            m_facts.filterVersion = active->shortVersion;
    }
    m_onEnd(m_facts, m_secrets);
}

}
