#include "gtk/FilterSystemGtk.h"

#include "base/Executor.h"
#include "gtk/PropertyListGtk.h"

#include <utility>

namespace brevanta {

namespace {

constexpr auto extensionInformation
    = "Library/SystemExtensions/com.brevanta.KestreluneMac.FilterExtension.systemextension/Contents/Info.plist";

std::optional<std::string> textIn(const PropertyListTexts& texts, std::string_view key)
{
    const auto found = texts.find(key);
    return found != texts.end() ? std::optional(found->second) : std::nullopt;
}

}

FilterSystemGtk::FilterSystemGtk(
    Executor& mainThread, const std::filesystem::path& root, std::filesystem::path contents)
    : m_mainThread(mainThread)
    , m_store(root)
    , m_contents(std::move(contents))
{
}

FilterSystemGtk::~FilterSystemGtk()
{
    if (m_monitor)
        g_file_monitor_cancel(m_monitor.get());
}

void FilterSystemGtk::loadPreferences(std::function<void(std::expected<FilterPreferences, FilterError>)> onEnd)
{
    m_mainThread.post(m_life.guard([this, onEnd = std::move(onEnd)] { answerPreferences(onEnd); }));
}

void FilterSystemGtk::answerPreferences(const std::function<void(std::expected<FilterPreferences, FilterError>)>& onEnd)
{
    const auto standIn = m_store.filter();
    if (!standIn)
        return onEnd(std::unexpected(asFilterError(standIn.error())));
    if (standIn->behaviour.preferences == QueryAnswer::hang)
        return askAgainOnceChanged([this, onEnd] { answerPreferences(onEnd); });
    onEnd(preferencesIn(*standIn));
}

void FilterSystemGtk::queryProperties(
    std::function<void(std::expected<std::vector<ExtensionRecord>, FilterError>)> onEnd)
{
    m_mainThread.post(m_life.guard([this, onEnd = std::move(onEnd)] { answerProperties(onEnd); }));
}

void FilterSystemGtk::answerProperties(
    const std::function<void(std::expected<std::vector<ExtensionRecord>, FilterError>)>& onEnd)
{
    const auto standIn = m_store.filter();
    if (!standIn)
        return onEnd(std::unexpected(asFilterError(standIn.error())));
    if (standIn->behaviour.properties == QueryAnswer::hang)
        return askAgainOnceChanged([this, onEnd] { answerProperties(onEnd); });
    onEnd(propertiesIn(*standIn));
}

void FilterSystemGtk::enable(Ended onEnd)
{
    m_mainThread.post(
        m_life.guard([this, onEnd = std::move(onEnd)] { changeConfiguration(withConfiguration, onEnd); }));
}

void FilterSystemGtk::removeConfiguration(Ended onEnd)
{
    m_mainThread.post(
        m_life.guard([this, onEnd = std::move(onEnd)] { changeConfiguration(withoutConfiguration, onEnd); }));
}

void FilterSystemGtk::changeConfiguration(ConfigurationChange change, const Ended& onEnd)
{
    bool hangs = false;
    std::expected<void, FilterError> refusal;
    const auto stored = m_store.changeFilter([&](const auto& standIn) -> StandInStore::Read<FilterStandIn> {
        hangs = standIn && standIn->behaviour.preferences == QueryAnswer::hang;
        if (!standIn || hangs)
            return standIn;
        auto changed = change(*standIn);
        if (changed)
            return *std::move(changed);
        refusal = std::unexpected(std::move(changed.error()));
        return standIn;
    });
    if (hangs)
        return askAgainOnceChanged([this, change, onEnd] { changeConfiguration(change, onEnd); });
    onEnd(stored ? refusal : std::unexpected(asFilterError(stored.error())));
}

void FilterSystemGtk::requestActivation(ExtensionRequestObserver observer)
{
    supersede();
    m_mainThread.post(m_life.guard([this, observer = std::move(observer)] { askWhetherToReplace(observer); }));
}

void FilterSystemGtk::requestDeactivation(ExtensionRequestObserver observer)
{
    supersede();
    m_mainThread.post(m_life.guard([this, observer = std::move(observer)] { proceed(observer, deactivate); }));
}

void FilterSystemGtk::supersede()
{
    if (!m_awaitingApproval)
        return;
    m_mainThread.post(m_life.guard([observer = *std::exchange(m_awaitingApproval, std::nullopt)] {
        observer.ended(std::unexpected(extensionError(requestSupersededCode)));
    }));
}

void FilterSystemGtk::askWhetherToReplace(const ExtensionRequestObserver& observer)
{
    const auto bundled = bundledExtension();
    if (!bundled)
        return observer.ended(std::unexpected(extensionError(extensionNotFoundCode)));
    const auto standIn = m_store.filter();
    const auto* const existing = standIn ? copyToReplace(*standIn) : nullptr;
    // The observer may destroy this object while it is asked.
    const auto goOn = m_life.guard([this, observer, bundled = *bundled](ExtensionReplacement replacement) {
        if (replacement == ExtensionReplacement::cancel)
            return observer.ended(std::unexpected(extensionError(requestCanceledCode)));
        proceed(observer, [bundled](FilterStandIn current) { return activate(std::move(current), bundled); });
    });
    goOn(existing && observer.replacing ? observer.replacing(*existing, *bundled) : ExtensionReplacement::replace);
}

void FilterSystemGtk::proceed(const ExtensionRequestObserver& observer, const RequestChange& change)
{
    std::optional<ExtensionRequestEnd> end;
    const auto stored = m_store.changeFilter([&](const auto& standIn) -> StandInStore::Read<FilterStandIn> {
        if (!standIn)
            return standIn;
        auto outcome = change(*standIn);
        end = std::move(outcome.end);
        return std::move(outcome.standIn);
    });
    if (!stored)
        return observer.ended(std::unexpected(asFilterError(stored.error())));
    if (end)
        return observer.ended(*end);
    supersede(); // Two requests may have been made before the first one's turn.
    m_awaitingApproval = observer;
    watch();
    if (observer.needsUserApproval)
        observer.needsUserApproval();
}

std::optional<ExtensionRecord> FilterSystemGtk::bundledExtension() const
{
    const auto information = readPropertyList(m_contents / extensionInformation);
    if (!information)
        return std::nullopt;
    return ExtensionRecord { .isEnabled = false,
        .isAwaitingUserApproval = false,
        .isUninstalling = false,
        .shortVersion = textIn(*information, "CFBundleShortVersionString"),
        .buildVersion = textIn(*information, "CFBundleVersion") };
}

void FilterSystemGtk::askAgainOnceChanged(std::function<void()> question)
{
    m_hanging.push_back(std::move(question));
    watch();
}

void FilterSystemGtk::watch()
{
    if (m_monitor)
        return;
    const GObjectPtr<GFile> file(g_file_new_for_path(m_store.filterFile().c_str()));
    m_monitor.reset(g_file_monitor_file(file.get(), G_FILE_MONITOR_NONE, nullptr, nullptr));
    if (!m_monitor)
        return;
    const auto changed = +[](GFileMonitor*, GFile*, GFile*, GFileMonitorEvent, gpointer self) {
        static_cast<FilterSystemGtk*>(self)->fileChanged();
    };
    m_connections.connect(m_monitor.get(), "changed", G_CALLBACK(changed), this);
    m_mainThread.post(
        m_life.guard([this] { fileChanged(); })); // It may have changed between the reading and the watching.
}

void FilterSystemGtk::fileChanged()
{
    for (auto& question : std::exchange(m_hanging, {}))
        m_mainThread.post(m_life.guard(std::move(question)));
    if (!m_awaitingApproval)
        return;
    const auto standIn = m_store.filter();
    const auto end = standIn ? endOfApproval(*standIn) : std::nullopt; // A damaged file says nothing of the user.
    if (!end)
        return;
    const auto observer = *std::exchange(m_awaitingApproval, std::nullopt);
    observer.ended(*end);
}

}
