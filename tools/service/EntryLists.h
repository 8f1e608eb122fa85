#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace brevanta::service {

// The seven long lists of the reply. The entries are made from their position alone, so the same count gives the same
// list in every run; their JSON text is made once and kept, since a list of 200,000 entries has five megabytes.
class EntryLists {
public:
    static constexpr std::size_t maximumCount = 1'000'000;
    static constexpr std::array<std::string_view, 7> keys {
        "blocked_domains",
        "blocked_ips",
        "blocked_apps",
        "auto_track_domains",
        "auto_track_apps",
        "metered_ip_prefixes",
        "metered_domains",
    };

    EntryLists();

    [[nodiscard]] static bool isListKey(std::string_view key);

    // Both expect one of `keys`.
    void setCount(std::string_view key, std::size_t count);
    [[nodiscard]] const std::string& textOf(std::string_view key) const;

private:
    std::array<std::string, keys.size()> m_texts;
};

}
