#include "gtk/UpdaterGtk.h"

#include "platform/AlertPanel.h"
#include "platform/SystemLog.h"

#include <utility>

namespace brevanta {

namespace {

constexpr std::size_t relaunchButton = 0;

}

UpdaterGtk::UpdaterGtk(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
    , m_store(m_dependencies.root)
{
}

UpdaterGtk::~UpdaterGtk()
{
    if (m_monitor)
        g_file_monitor_cancel(m_monitor.get());
}

void UpdaterGtk::start(RelaunchHandler handler)
{
    m_handler = std::move(handler);
    watch();
    // Read behind the monitor, so that nothing changes between the two unseen.
    fileChanged();
}

void UpdaterGtk::watch()
{
    // GLib looks for a missing folder every few seconds only; one that is there tells of changes at once.
    std::error_code ignored;
    std::filesystem::create_directories(m_store.updaterFile().parent_path(), ignored);
    const GObjectPtr<GFile> file(g_file_new_for_path(m_store.updaterFile().c_str()));
    m_monitor.reset(g_file_monitor_file(file.get(), G_FILE_MONITOR_NONE, nullptr, nullptr));
    if (!m_monitor)
        return;
    const auto changed = +[](GFileMonitor*, GFile*, GFile*, GFileMonitorEvent, gpointer self) {
        static_cast<UpdaterGtk*>(self)->fileChanged();
    };
    m_connections.connect(m_monitor.get(), "changed", G_CALLBACK(changed), this);
}

bool UpdaterGtk::automaticChecks() const
{
    const auto standIn = m_store.updater();
    return standIn && standIn->checksAutomatically;
}

void UpdaterGtk::setAutomaticChecks(bool on)
{
    const auto stored
        = m_store.changeUpdater([on](StandInStore::Read<UpdaterStandIn> current) -> StandInStore::Read<UpdaterStandIn> {
              if (current)
                  current->checksAutomatically = on;
              return current;
          });
    if (!stored)
        m_dependencies.log.log("[Updater] the setting is not kept: " + stored.error().message);
}

void UpdaterGtk::checkNow()
{
    const auto standIn = m_store.updater();
    if (!standIn)
        return tell("The check for updates failed", standIn.error().message);
    if (!standIn->offered)
        return tell("Brevanta is up to date", "Version " + m_dependencies.version + " is the newest one.");
    offer(*standIn->offered);
}

void UpdaterGtk::fileChanged()
{
    const auto standIn = m_store.updater();
    if (!standIn)
        return;
    if (m_told && m_told != standIn->offered)
        m_dependencies.alerts.withdraw(identifierOf(*std::exchange(m_told, std::nullopt)));
    if (standIn->checksAutomatically && standIn->offered && !m_told)
        offer(*standIn->offered);
}

void UpdaterGtk::offer(const std::string& version)
{
    m_told = version;
    m_dependencies.alerts.present({ .identifier = identifierOf(version),
                                      .style = AlertStyle::informational,
                                      .message = "Brevanta " + version + " is ready",
                                      .informativeText = "Version " + m_dependencies.version
                                          + " is running. Relaunch Brevanta to go on with the new one.",
                                      .buttons = { "Relaunch", "Later" } },
        m_life.guard([this, version](const AlertResponse& response) {
            if (response == AlertResponse { AlertEnd::button, relaunchButton })
                askToRelaunch(version);
        }));
}

void UpdaterGtk::askToRelaunch(const std::string& version)
{
    const std::function<void()> go = m_life.guard([this, version] { relaunch(version); });
    if (m_handler(go) == RelaunchDecision::now)
        go();
}

void UpdaterGtk::relaunch(const std::string& version)
{
    const auto stored = m_store.changeUpdater(
        [&version](StandInStore::Read<UpdaterStandIn> current) -> StandInStore::Read<UpdaterStandIn> {
            if (current && current->offered == version)
                current->offered.reset();
            return current;
        });
    if (!stored)
        m_dependencies.log.log("[Updater] the offer stays: " + stored.error().message);
    m_dependencies.log.log("[Updater] relaunching for version " + version);
    m_dependencies.relaunch();
}

void UpdaterGtk::tell(const std::string& message, const std::string& text)
{
    m_dependencies.alerts.present({ .identifier = "updateCheck",
                                      .style = AlertStyle::informational,
                                      .message = message,
                                      .informativeText = text,
                                      .buttons = { "OK" } },
        [](AlertResponse) { });
}

std::string UpdaterGtk::identifierOf(const std::string& version) { return "updateOffer-" + version; }

}
