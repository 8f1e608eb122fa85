#pragma once

#include <filesystem>

namespace brevanta {

class FileStore;
class SystemLog;

// Puts the four notification sounds from the bundle's folder of resources into Library/Sounds of the home folder, from
// which the notification center plays them. A file that has the right contents already is kept. What fails is logged,
// and the notifications concerned are silent. Any thread; reads at most eight small files and writes where one differs.
void installNotificationSounds(
    FileStore& files, SystemLog& log, const std::filesystem::path& resources, const std::filesystem::path& home);

}
