#pragma once

#include "notify/DeliveryGeneration.h"
#include "platform/UserDefaults.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace brevanta {

// The identifiers of the notices that were handled already, oldest first. Text that is no integer in decimal is
// remembered by a hash of 64 bits. A pure value.
class SeenIdentifiers {
public:
    // More are forgotten, the oldest first.
    static constexpr std::size_t most = 200;

    // As it was stored; what is absent or no list of integers counts as empty.
    explicit SeenIdentifiers(const std::optional<DefaultsValue>& stored);

    // The records that were not seen before, in their order; they count as seen from now on.
    template <typename Record, typename Identifier>
    [[nodiscard]] std::vector<const Record*> takeFresh(
        const std::vector<Record>& records, Identifier Record::* identifier)
    {
        std::vector<const Record*> fresh;
        for (const auto& record : records) {
            if (admit(number(record.*identifier)))
                fresh.push_back(&record);
        }
        return fresh;
    }

    // The newest, to be stored.
    [[nodiscard]] std::vector<std::int64_t> newest() const;

private:
    static std::int64_t number(std::int64_t identifier) { return identifier; }
    static std::int64_t number(const std::string& identifier);
    bool admit(std::int64_t identifier);

    std::vector<std::int64_t> m_inOrder;
    std::unordered_set<std::int64_t> m_known; // The same, to be found quickly.
};

// The records that may be shown, in their order: none that is in the list under `seenKey`, which then holds them too.
// When the delivery generation does not allow `generation` there are none, and they count as seen all the same. Main
// thread only.
template <typename Record>
[[nodiscard]] std::vector<const Record*> takeDeliverable(UserDefaults& defaults, const char* seenKey,
    const std::vector<Record>& records, std::int64_t Record::* identifier, std::int64_t generation)
{
    if (records.empty())
        return {};
    SeenIdentifiers seen(defaults.get(seenKey));
    auto fresh = seen.takeFresh(records, identifier);
    if (fresh.empty())
        return {};
    defaults.set(seenKey, seen.newest());
    if (!DeliveryGeneration(defaults).allows(generation))
        fresh.clear();
    return fresh;
}

}
