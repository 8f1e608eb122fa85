#include "diagnosis/Findings.h"

#include "base/Text.h"

#include <algorithm>

namespace brevanta {

namespace {

ObstacleWords obstacleIn(const DiagnosisFacts& facts, const std::filesystem::path& folder)
{
    const auto found = facts.folders.find(folder);
    return found != facts.folders.end() ? obstacleWords(facts, found->second, folder) : ObstacleWords {};
}

// A file that the client puts into its place at its start.
Finding placed(
    const DiagnosisFacts& facts, const Subject& subject, const std::filesystem::path& file, FilePlacement placement)
{
    if (placement == FilePlacement::inPlace)
        return good(subject, "inPlace", file.string());
    const bool isMissing = placement == FilePlacement::missing;
    const auto state = isMissing ? "missing" : "different";
    auto text = (isMissing ? "missing: " : "not as this version writes it: ") + file.string();
    const auto obstacle = obstacleIn(facts, file.parent_path());
    if (obstacle.reason.empty())
        return needsUser(subject, state, std::move(text), openAnew(facts, "puts this right"));
    text += "; " + obstacle.reason;
    return obstacle.remedy.empty() ? notice(subject, state, std::move(text))
                                   : needsUser(subject, state, std::move(text), obstacle.remedy);
}

std::string keyOf(std::string_view name)
{
    auto key = lowerCased(name);
    std::ranges::replace(key, ' ', '-');
    return key;
}

}

void addNativeMessaging(std::vector<Finding>& findings, const DiagnosisFacts& facts)
{
    const auto& state = facts.nativeMessaging;
    findings.push_back(
        placed(facts, { "nativeMessaging.launcher", "Browser launcher" }, state.launcherFile, state.launcher));
    const bool launcherCannotBe = state.launcher != FilePlacement::inPlace
        && !obstacleIn(facts, state.launcherFile.parent_path()).reason.empty();
    for (const auto& manifest : state.manifests) {
        const auto name = std::string(manifest.browser);
        const Subject subject { "nativeMessaging.manifest." + keyOf(name), name + " manifest" };
        if (!manifest.placement)
            findings.push_back(good(subject, "notUsed", "none: this browser has not been used"));
        else if (*manifest.placement != FilePlacement::inPlace && launcherCannotBe)
            findings.push_back(notice(subject, "missing", "not before the launcher is in its place"));
        else
            findings.push_back(placed(facts, subject, manifest.file, *manifest.placement));
    }
    if (!facts.confinedBrowsers.empty())
        findings.push_back(notice({ "nativeMessaging.confined", "Browsers out of reach" }, "",
            commaSeparated(facts.confinedBrowsers) + ": they run in a sandbox of their own"));
}

Finding soundsFinding(const DiagnosisFacts& facts)
{
    const Subject subject { "sounds", "Notification sounds" };
    std::vector<std::string> wrong;
    bool shipped = true;
    for (const auto& sound : facts.sounds) {
        if (sound.placement != FilePlacement::inPlace)
            wrong.push_back(sound.name);
        shipped &= sound.isBundled;
    }
    if (!shipped)
        return needsUser(subject, "notBundled", "the application lacks " + commaSeparated(wrong),
            unlessAdministrators(facts, "install Brevanta anew: its bundle is damaged."));
    if (wrong.empty())
        return good(subject, "inPlace", "in place");
    auto text = "not in place: " + commaSeparated(wrong);
    const auto obstacle = obstacleIn(facts, facts.soundFolder);
    if (obstacle.reason.empty())
        return needsUser(subject, "notInPlace", std::move(text), openAnew(facts, "puts this right"));
    text += "; " + obstacle.reason;
    return obstacle.remedy.empty() ? notice(subject, "notInPlace", std::move(text))
                                   : needsUser(subject, "notInPlace", std::move(text), obstacle.remedy);
}

}
