#pragma once

#include "filter/DaemonHealth.h"
#include "filter/FilterHealth.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

class SystemLog;
class UserDefaults;

enum class ProtectiveComponent { blockingService, contentFilter };

// "blockingService" or "contentFilter".
[[nodiscard]] std::string_view componentName(ProtectiveComponent component);

enum class ConclusiveState { on, off };

// "on" or "off".
[[nodiscard]] std::string_view stateName(ConclusiveState state);

// What was last known for certain of a component, also in an earlier run; nothing when there is no such thing.
[[nodiscard]] std::optional<ConclusiveState> lastConclusive(
    const UserDefaults& defaults, ProtectiveComponent component);

// What is known for certain of a component, and whether we brought it about ourselves.
struct ConclusiveReading {
    std::optional<ConclusiveState> state; // Nothing: not conclusive.
    bool selfCaused { false };

    bool operator==(const ConclusiveReading&) const = default;
};

[[nodiscard]] ConclusiveReading conclusiveReading(const DaemonHealth& health, bool upgradeHeld, double now);
[[nodiscard]] ConclusiveReading conclusiveReading(
    const FilterHealth& filter, const DaemonHealth& service, bool upgradeHeld, double now);

// Notices that a component was switched off outside of the client, once, and also when it happened while the client
// did not run. Main thread only.
class OffNoticeTracker {
public:
    // `post` is told of the component and the number of this change of it, counted from 1.
    OffNoticeTracker(
        UserDefaults& defaults, SystemLog& log, std::function<void(ProtectiveComponent, std::int64_t)> post);

    void update(ProtectiveComponent component, const ConclusiveReading& reading);

    // The number of the component's newest change; 0 when there was none.
    [[nodiscard]] std::int64_t generation(ProtectiveComponent component) const;

private:
    UserDefaults& m_defaults;
    SystemLog& m_log;
    std::function<void(ProtectiveComponent, std::int64_t)> m_post;
    std::map<ProtectiveComponent, std::int64_t> m_generations;
};

}
