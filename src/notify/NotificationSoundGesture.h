#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

// What a notification tells the ear. Each gesture has a sound of its own.
enum class NotificationSoundGesture { gain, loss, reblock, signature };

inline constexpr std::array notificationSoundGestures { NotificationSoundGesture::gain, NotificationSoundGesture::loss,
    NotificationSoundGesture::reblock, NotificationSoundGesture::signature };

// "gain", "loss", "reblock" or "signature".
[[nodiscard]] std::string_view rawText(NotificationSoundGesture gesture);

// The name of the sound's file without a folder, such as "brevanta-gain.aiff".
[[nodiscard]] std::string soundFileName(NotificationSoundGesture gesture);

// The gesture of the notification with this identifier: "task-timer", or "task-timer-" and anything behind it. The
// longest key that fits counts. Nothing when none fits: such a notification has the system's own sound.
[[nodiscard]] std::optional<NotificationSoundGesture> gestureForNotification(std::string_view identifier);

}
