#pragma once

#include "platform/FileStore.h"

#include <filesystem>
#include <string>
#include <vector>

namespace brevanta {

class SystemLog;

// Puts the four notification sounds from the bundle's folder of resources into Library/Sounds of the home folder, from
// which the notification center plays them. A file that has the right contents already is kept. What fails is logged,
// and the notifications concerned are silent. Any thread; reads at most eight small files and writes where one differs.
void installNotificationSounds(
    FileStore& files, SystemLog& log, const std::filesystem::path& resources, const std::filesystem::path& home);

// Where they are put.
[[nodiscard]] std::filesystem::path notificationSoundFolder(const std::filesystem::path& home);

struct SoundState {
    std::string name; // Of the file.
    bool isBundled { false }; // The application has it.
    FilePlacement placement { FilePlacement::missing }; // In the user's folder; `missing`, too, when it is not bundled.

    bool operator==(const SoundState&) const = default;
};

// How the four sounds are; nothing is written. Any thread; reads at most eight small files.
[[nodiscard]] std::vector<SoundState> inspectNotificationSounds(
    const FileStore& files, const std::filesystem::path& resources, const std::filesystem::path& home);

}
