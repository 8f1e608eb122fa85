#pragma once

#include <array>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <vector>

namespace brevanta::service {

enum class NoticeKind { reminder, alert, rejection, resume };

[[nodiscard]] std::optional<NoticeKind> noticeKindNamed(std::string_view);

// The four queues of notices. A notice stays in every reply until it is cleared or its time is up.
class NoticeQueues {
public:
    explicit NoticeQueues(std::uint64_t launchOrder);

    // Queues the record as it stands, well formed or not.
    void add(NoticeKind, nlohmann::json record, std::optional<double> until);
    // Queues a believable record under the next identifier, which it returns.
    std::int64_t addDefault(NoticeKind, std::optional<double> until);

    void clear(NoticeKind);
    void clearAll();
    void advance(double now);

    // Puts all four queues under their keys.
    void writeTo(nlohmann::json& reply) const;

private:
    struct Notice {
        nlohmann::json record;
        std::optional<double> until;
    };

    std::array<std::vector<Notice>, 4> m_queues;
    std::int64_t m_lastIdentifier;
};

}
