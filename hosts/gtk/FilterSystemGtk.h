#pragma once

#include "base/LifeToken.h"
#include "gtk/GObjectPtr.h"
#include "gtk/SignalConnections.h"
#include "gtk/standin/StandInStore.h"
#include "platform/FilterSystem.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace brevanta {

class Executor;

// The stand-in of the system's side of the content filter, in a file of the development root that commands change
// meanwhile (tools/system/README.md). Before an existing copy is replaced the observer is always asked, as a Mac does
// in its developer mode ("actionForReplacingExtension" of Apple's documentation); elsewhere a Mac asks only when the
// versions differ. A file that cannot be read fails what is asked; what hangs is answered once the file has changed.
class FilterSystemGtk final : public FilterSystem {
public:
    // `root` is the development root, `contents` the folder of that name in the application's bundle.
    FilterSystemGtk(Executor& mainThread, const std::filesystem::path& root, std::filesystem::path contents);
    ~FilterSystemGtk() override;
    FilterSystemGtk(const FilterSystemGtk&) = delete;
    FilterSystemGtk& operator=(const FilterSystemGtk&) = delete;

    void loadPreferences(std::function<void(std::expected<FilterPreferences, FilterError>)> onEnd) override;
    void enable(std::function<void(std::expected<void, FilterError>)> onEnd) override;
    void removeConfiguration(std::function<void(std::expected<void, FilterError>)> onEnd) override;
    void queryProperties(std::function<void(std::expected<std::vector<ExtensionRecord>, FilterError>)> onEnd) override;

    // A request that waits for the user's approval is superseded by the next request of either kind. It fails when the
    // copy that is to be approved goes away, and when there is no extension in the bundle.
    void requestActivation(ExtensionRequestObserver observer) override;
    void requestDeactivation(ExtensionRequestObserver observer) override;

    [[nodiscard]] std::optional<ExtensionRecord> bundledExtension() const override;

private:
    using Ended = std::function<void(std::expected<void, FilterError>)>;
    using ConfigurationChange = std::expected<FilterStandIn, FilterError> (*)(FilterStandIn);
    using RequestChange = std::function<ExtensionRequestOutcome(FilterStandIn)>;

    void answerPreferences(const std::function<void(std::expected<FilterPreferences, FilterError>)>& onEnd);
    void answerProperties(const std::function<void(std::expected<std::vector<ExtensionRecord>, FilterError>)>& onEnd);
    void changeConfiguration(ConfigurationChange change, const Ended& onEnd);
    void supersede();
    void askWhetherToReplace(const ExtensionRequestObserver& observer);
    void proceed(const ExtensionRequestObserver& observer, const RequestChange& change);
    void askAgainOnceChanged(std::function<void()> question);
    void watch();
    void fileChanged();

    Executor& m_mainThread;
    StandInStore m_store;
    std::filesystem::path m_contents;
    std::vector<std::function<void()>> m_hanging; // What is asked again when the file has changed.
    std::optional<ExtensionRequestObserver> m_awaitingApproval;
    GObjectPtr<GFileMonitor> m_monitor;
    SignalConnections m_connections;
    LifeToken m_life;
};

}
