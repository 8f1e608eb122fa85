#include "gtk/ConfinedBrowsers.h"

#include <utility>

namespace brevanta {

namespace {

constexpr std::pair<const char*, const char*> browserFolders[] = {
    { "snap/chromium", "Chromium (Snap)" },
    { ".var/app/org.chromium.Chromium", "Chromium (Flatpak)" },
    { ".var/app/com.google.Chrome", "Google Chrome (Flatpak)" },
    { ".var/app/com.brave.Browser", "Brave (Flatpak)" },
    { ".var/app/com.microsoft.Edge", "Microsoft Edge (Flatpak)" },
};

}

std::vector<std::string> confinedBrowsers(const std::filesystem::path& home)
{
    std::vector<std::string> names;
    for (const auto& [folder, name] : browserFolders) {
        std::error_code error;
        if (std::filesystem::is_directory(home / folder, error))
            names.emplace_back(name);
    }
    return names;
}

}
