#pragma once

#include "base/LifeToken.h"
#include "mac/CompletionTable.h"
#include "mac/ExtensionRequestMac.h"
#include "platform/FilterSystem.h"

#include <cstdint>
#include <map>

NS_ASSUME_NONNULL_BEGIN

namespace brevanta {

// The content filter's configuration and its system extension (documentation pages NEFilterManager and
// OSSystemExtensionManager). The application has to lie in the Applications folder, or every request for the extension
// fails.
class FilterSystemMac final : public FilterSystem {
public:
    explicit FilterSystemMac(MainLoop& mainLoop);
    ~FilterSystemMac() override;
    FilterSystemMac(const FilterSystemMac&) = delete;
    FilterSystemMac& operator=(const FilterSystemMac&) = delete;

    void loadPreferences(std::function<void(std::expected<FilterPreferences, FilterError>)> onEnd) override;
    void enable(std::function<void(std::expected<void, FilterError>)> onEnd) override;
    void removeConfiguration(std::function<void(std::expected<void, FilterError>)> onEnd) override;
    void queryProperties(std::function<void(std::expected<std::vector<ExtensionRecord>, FilterError>)> onEnd) override;
    void requestActivation(ExtensionRequestObserver observer) override;
    void requestDeactivation(ExtensionRequestObserver observer) override;
    [[nodiscard]] std::optional<ExtensionRecord> bundledExtension() const override;

private:
    using Preferences = std::expected<FilterPreferences, FilterError>;
    using Outcome = std::expected<void, FilterError>;
    using Properties = std::expected<std::vector<ExtensionRecord>, FilterError>;

    void save(std::function<void(Outcome)> onEnd);
    void submit(OSSystemExtensionRequest* request, ExtensionRequestObserver observer);
    void submit(std::uint64_t number, OSSystemExtensionRequest* request, const ExtensionRequestEvents& events);

    MainLoop& m_mainLoop;
    CompletionTable<Preferences> m_preferences;
    CompletionTable<Outcome> m_outcomes;
    CompletionTable<Properties> m_properties;
    // Of the requests that have not ended, since nothing else keeps them alive.
    std::map<std::uint64_t, BrevantaExtensionRequestDelegate*> m_delegates;
    std::uint64_t m_nextRequest { 0 };
    LifeToken m_life;
};

}

NS_ASSUME_NONNULL_END
