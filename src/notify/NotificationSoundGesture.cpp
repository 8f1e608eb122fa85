#include "notify/NotificationSoundGesture.h"

namespace brevanta {

namespace {

struct Row {
    std::string_view key;
    NotificationSoundGesture gesture;
};

using enum NotificationSoundGesture;

constexpr std::array<Row, 10> rows { {
    { "app-rejected", loss },
    { "auto-track-start", signature },
    { "auto-track-stop", reblock },
    { "calendar-reminder", signature },
    { "high-lp", gain },
    { "intraday", signature },
    { "low-lp", loss },
    { "no-lp", loss },
    { "task-resumed", gain },
    { "task-timer", signature },
} };

bool fits(std::string_view key, std::string_view identifier)
{
    return identifier.starts_with(key) && (identifier.size() == key.size() || identifier[key.size()] == '-');
}

}

std::string_view rawText(NotificationSoundGesture gesture)
{
    switch (gesture) {
    case gain:
        return "gain";
    case loss:
        return "loss";
    case reblock:
        return "reblock";
    case signature:
        break;
    }
    return "signature";
}

std::string soundFileName(NotificationSoundGesture gesture)
{
    return "brevanta-" + std::string(rawText(gesture)) + ".aiff";
}

std::optional<NotificationSoundGesture> gestureForNotification(std::string_view identifier)
{
    // An identifier that is a key fits it in its whole length, and no longer key can fit.
    const Row* longest = nullptr;
    for (const auto& row : rows) {
        if (fits(row.key, identifier) && (!longest || row.key.size() > longest->key.size()))
            longest = &row;
    }
    return longest ? std::optional(longest->gesture) : std::nullopt;
}

}
