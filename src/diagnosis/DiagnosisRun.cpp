#include "diagnosis/DiagnosisRun.h"

#include "crash/CrashEndpoint.h"
#include "daemon/BlockingStatus.h"
#include "daemon/DaemonClient.h"
#include "daemon/SocketTransport.h"
#include "diagnosis/DiagnosisFiles.h"
#include "filter/ComponentLabels.h"
#include "filter/ExtensionRecords.h"
#include "filter/OffNoticeTracker.h"
#include "install/InstallScript.h"
#include "install/RemovalShell.h"
#include "install/Version.h"
#include "platform/Clock.h"
#include "platform/LocalSocket.h"
#include "platform/MainLoop.h"
#include "platform/UserDefaults.h"
#include "update/UpdaterPolicy.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

namespace {

constexpr double silenceOfAnExchange = 5; // Seconds after which SocketTransport waits no longer.

bool isSupported(std::string_view system, std::string_view minimum)
{
    const auto version = Version::parse(system);
    const auto oldest = Version::parse(minimum);
    return !version || !oldest || *version >= *oldest;
}

}

DiagnosisRun::DiagnosisRun(DiagnosisPorts ports, BuildConfiguration configuration, End onEnd)
    : m_ports(std::move(ports))
    , m_configuration(std::move(configuration))
    , m_onEnd(std::move(onEnd))
    , m_open { Question::status, Question::backgroundItem, Question::preferences, Question::properties,
        Question::loginItem, Question::notifications, Question::client }
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
        lookAtSharedState();
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
    m_ports.findClient(m_life.guard([this](std::optional<bool> runs) {
        m_facts.clientRuns = runs;
        answered(Question::client);
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
        m_status = *status;
        m_facts.contact = DiagnosisFacts::Answer { .version = answer.daemonVersion,
            .isSignedIn = answer.hasDeviceToken.value_or(true) && !answer.authTokenInvalid.value_or(false) };
        m_service.recordSuccess(answer.daemonVersion, m_startedAt);
        if (answer.authToken)
            m_secrets.push_back(*answer.authToken);
        return;
    }
    m_facts.contact = contactAfter(status.error());
    m_service.recordFailure(DaemonHealth::kindOf(status.error()), m_ports.services.isProgramInstalled(), m_startedAt);
}

DiagnosisFacts::Contact DiagnosisRun::contactAfter(const DaemonFailure& failure) const
{
    if (DaemonHealth::kindOf(failure) == DaemonHealth::PollFailure::badReply) {
        const bool wasSilent = std::holds_alternative<JsonParseError>(failure)
            && m_ports.clock.continuousSeconds() - m_startedAt >= silenceOfAnExchange;
        return wasSilent ? DiagnosisFacts::Contact(DiagnosisFacts::NoAnswerInTime {}) : failure;
    }
    const auto found = m_ports.pathFacts(m_configuration.socketPath);
    switch (found.kind) {
    case PathKind::nothing:
        return DiagnosisFacts::NoSocket {};
    case PathKind::socket:
        return found.mayWrite ? DiagnosisFacts::Contact(failure) : DiagnosisFacts::NotPermitted {};
    case PathKind::unknown:
        return DiagnosisFacts::NotPermitted {};
    case PathKind::file:
    case PathKind::folder:
    case PathKind::other:
        break;
    }
    return DiagnosisFacts::NotASocket {};
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
    m_facts.system
        = { .text = m_ports.systemName, .isSupported = isSupported(m_ports.systemVersion, m_ports.minimumSystem) };
    m_facts.minimumSystem = m_ports.minimumSystem;
    m_facts.isAdministrator = m_ports.isAdministrator;
    m_facts.log = m_ports.log;
    m_facts.preferences = preferencesIn(m_ports);
    m_facts.bundledFilter = m_ports.filterSystem.bundledExtension();
    m_facts.nativeMessaging = inspectNativeMessaging(m_ports.files,
        { .mode = m_configuration.flavour == Flavour::dev ? NativeMessagingPolicy::Mode::dev
                                                          : NativeMessagingPolicy::Mode::prod,
            .root = m_configuration.root,
            .home = m_ports.home,
            .bundle = m_ports.bundle });
    if (m_ports.confinedBrowsers)
        m_facts.confinedBrowsers = m_ports.confinedBrowsers();
    m_facts.sounds = inspectNotificationSounds(m_ports.files, m_ports.resources, m_ports.home);
    m_facts.soundFolder = notificationSoundFolder(m_ports.home);
    lookAtFolders();
    m_facts.updates = { .feed = m_ports.updaterFeed,
        .isUsable
        = UpdaterPolicy::configuration(m_ports.updaterFeed, m_ports.updaterKey, m_ports.parseUrl).has_value() };
    m_facts.reportsCrashes = crashEndpointHost(m_ports.parseUrl(m_configuration.crashEndpoint)).has_value();
    m_facts.lastService = lastConclusive(m_ports.defaults, ProtectiveComponent::blockingService);
    m_facts.lastFilter = lastConclusive(m_ports.defaults, ProtectiveComponent::contentFilter);
}

void DiagnosisRun::lookAtFolders()
{
    const auto& native = m_facts.nativeMessaging;
    std::vector folders { native.launcherFile.parent_path(), m_facts.soundFolder };
    for (const auto& manifest : native.manifests)
        folders.push_back(manifest.file.parent_path());
    for (const auto& folder : folders)
        m_facts.folders.insert_or_assign(folder, m_ports.folderFacts(folder));
}

void DiagnosisRun::lookAtSharedState()
{
    m_facts.sharedState = sharedStateIn(m_ports, m_configuration.flavour, m_status.get());
}

// Whether another look at the file may find what this one did not.
bool DiagnosisRun::mayBeWrittenYet() const
{
    using Condition = DiagnosisFacts::SharedState::Condition;
    const auto& state = m_facts.sharedState;
    return m_status && state && m_facts.clientRuns != false && state->folder.obstacle == WriteObstacle::none
        && (state->condition == Condition::missing || state->condition == Condition::outOfDate);
}

// What the service says of it comes first; the marker tells where nobody says anything.
DiagnosisFacts::Removal DiagnosisRun::removal() const
{
    using Stage = DiagnosisFacts::Removal::Stage;
    const InstallPaths paths { .bundledProgram = {}, .bundledPropertyList = {}, .root = m_configuration.root };
    const bool isInstalled = m_ports.services.isProgramInstalled();
    DiagnosisFacts::Removal removal { .stage = Stage::none,
        .marker = paths.removalMarker(),
        .canGoOn = isInstalled && m_ports.pathFacts(paths.propertyList()).kind == PathKind::file };
    const auto state
        = m_status && m_status->removal.snapshot ? m_status->removal.snapshot->state : RemovalSnapshot::State::none;
    if (state == RemovalSnapshot::State::committed || state == RemovalSnapshot::State::finishing) {
        RemovalShell shell;
        static_cast<void>(shell.statusArrived(m_status->removal));
        const auto program = isInstalled ? ServiceProgram::present : ServiceProgram::absent;
        removal.stage = shell.overdue(m_ports.clock.wallSeconds(), program) ? Stage::overdue : Stage::finishing;
    } else if (m_ports.pathFacts(removal.marker).kind != PathKind::nothing) {
        removal.stage = isMarkerFresh(m_ports, removal.marker) ? Stage::atWork : Stage::cutShort;
    } else if (state == RemovalSnapshot::State::pending) {
        removal.stage = Stage::pending;
    }
    return removal;
}

void DiagnosisRun::answered(Question question)
{
    m_open.erase(question);
    if (!m_open.empty())
        return;
    lookAtSharedState();
    if (mayBeWrittenYet())
        m_secondLook = m_ports.mainLoop.startTimer(secondLookAfter, TimerRepeat::once, [this] {
            lookAtSharedState();
            end();
        });
    else
        end();
}

// All verdicts are those of the moment at which the questions were asked: a slow answer does not make another one old.
void DiagnosisRun::end()
{
    if (std::exchange(m_isOver, true))
        return;
    m_limit.reset();
    m_secondLook.reset();
    m_facts.removal = removal();
    if (m_open.contains(Question::status))
        m_service.recordFailure(
            DaemonHealth::PollFailure::badReply, m_ports.services.isProgramInstalled(), m_startedAt);
    m_facts.service = m_service.state(m_startedAt);
    m_facts.filter = m_filter.status(m_startedAt);
    m_facts.filterLine = filterLine(filterLineFacts(m_filter, m_preferences, m_startedAt));
    if (const auto* const records = lastRecords(m_filter)) {
        const auto active = std::ranges::find_if(records->records, isActive);
        if (active != records->records.end())
            m_facts.activeFilter = *active;
        m_facts.filterIsUninstalling = std::ranges::any_of(records->records, &ExtensionRecord::isUninstalling);
    }
    m_onEnd(m_facts, m_secrets);
}

}
