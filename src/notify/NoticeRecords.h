#pragma once

#include "base/JsonReader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

// The notices that the blocking service queues for the client, as they stand in a status reply. Identifiers keep all
// 64 bits. Each `decode` gives nothing when the element is no such record.

struct PendingReminder {
    enum class Kind { fire, overdue };

    std::int64_t eventId { 0 };
    std::string taskId;
    Kind kind { Kind::fire };
    std::string title;
    std::string notificationTitle; // Never blank: such a record does not decode.
    std::string body; // Never blank, likewise.

    bool operator==(const PendingReminder&) const = default;
    [[nodiscard]] static std::optional<PendingReminder> decode(json::Element element);
};

struct PendingLocalAlert {
    std::int64_t alertId { 0 };
    std::string kind;
    std::string notificationTitle; // At most one of the two is blank.
    std::string body;
    std::string soundPrefix;
    double expiresInSeconds { 0 }; // Counted from receipt.
    std::optional<std::string> open; // What a click opens; absent unless it is text.

    bool operator==(const PendingLocalAlert&) const = default;
    [[nodiscard]] static std::optional<PendingLocalAlert> decode(json::Element element);
};

struct PendingAppRejection {
    enum class Kind { rejectedOpen, sessionEnded };

    std::string eventId; // This and the two below: text that is not blank, or an integer in decimal.
    std::optional<std::string> taskId;
    std::optional<std::string> taskTitle;
    std::optional<std::string> closingSessionId;
    std::string reason;
    Kind kind { Kind::rejectedOpen };

    bool operator==(const PendingAppRejection&) const = default;
    [[nodiscard]] static std::optional<PendingAppRejection> decode(json::Element element);
};

struct PendingTaskResume {
    std::string eventId; // As in PendingAppRejection.
    std::optional<std::string> taskId;
    std::optional<std::string> taskTitle;
    std::optional<std::string> closingSessionId;

    bool operator==(const PendingTaskResume&) const = default;
    [[nodiscard]] static std::optional<PendingTaskResume> decode(json::Element element);
};

// The records of the array in their order; elements that do not decode are left out and cost their neighbours nothing.
template <typename Record> [[nodiscard]] std::vector<Record> decodeLossyArray(json::Array array)
{
    std::vector<Record> records;
    for (const auto element : array) {
        if (auto record = Record::decode(element))
            records.push_back(std::move(*record));
    }
    return records;
}

}
