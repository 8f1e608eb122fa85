#include "notify/NotificationSounds.h"

#include "base/Text.h"
#include "notify/NotificationSoundGesture.h"
#include "platform/SystemLog.h"

#include <string>
#include <vector>

namespace brevanta {

namespace {

struct Sound {
    std::string name;
    std::string contents;
};

std::vector<Sound> bundledSounds(const FileStore& files, SystemLog& log, const std::filesystem::path& resources)
{
    std::vector<Sound> sounds;
    for (const auto gesture : notificationSoundGestures) {
        auto name = soundFileName(gesture);
        auto contents = files.read(resources / name);
        if (contents)
            sounds.push_back({ std::move(name), std::move(*contents) });
        else if (contents.error().kind == FileStoreError::Kind::missing)
            log.log("[NotificationSounds] bundled sound missing: " + name);
        else
            log.log("[NotificationSounds] cannot read bundled " + name + ": " + contents.error().message);
    }
    return sounds;
}

// The names of those that could be written.
std::vector<std::string> write(
    FileStore& files, SystemLog& log, const std::filesystem::path& folder, const std::vector<Sound>& sounds)
{
    if (const auto made = files.createFolder(folder); !made) {
        log.log("[NotificationSounds] cannot create " + folder.string() + ": " + made.error().message);
        return {};
    }
    std::vector<std::string> written;
    for (const auto& [name, contents] : sounds) {
        if (const auto result = files.replace(folder / name, contents, FilePermissions::readableByAll))
            written.push_back(name);
        else
            log.log("[NotificationSounds] cannot write " + name + " into " + folder.string() + ": "
                + result.error().message);
    }
    return written;
}

}

std::filesystem::path notificationSoundFolder(const std::filesystem::path& home) { return home / "Library" / "Sounds"; }

std::vector<SoundState> inspectNotificationSounds(
    const FileStore& files, const std::filesystem::path& resources, const std::filesystem::path& home)
{
    std::vector<SoundState> states;
    for (const auto gesture : notificationSoundGestures) {
        auto name = soundFileName(gesture);
        const auto bundled = files.read(resources / name);
        const auto placement
            = bundled ? placementOf(files, notificationSoundFolder(home) / name, *bundled) : FilePlacement::missing;
        states.push_back({ .name = std::move(name), .isBundled = bundled.has_value(), .placement = placement });
    }
    return states;
}

void installNotificationSounds(
    FileStore& files, SystemLog& log, const std::filesystem::path& resources, const std::filesystem::path& home)
{
    const auto folder = notificationSoundFolder(home);
    auto sounds = bundledSounds(files, log, resources);
    const auto kept = std::erase_if(sounds, [&](const Sound& sound) {
        return placementOf(files, folder / sound.name, sound.contents) == FilePlacement::inPlace;
    });
    const auto written = sounds.empty() ? std::vector<std::string>() : write(files, log, folder, sounds);

    if (written.empty() && !sounds.empty())
        log.log("[NotificationSounds] nothing installed: " + std::to_string(sounds.size())
            + " file(s) failed to write into " + folder.string());
    else
        log.log("[NotificationSounds] installed " + (written.empty() ? "nothing" : commaSeparated(written)) + " into "
            + folder.string() + " (kept " + std::to_string(kept) + ")");
}

}
