#include "gtk/DesktopSound.h"

namespace brevanta {

DesktopSound desktopSound(const std::optional<std::string>& name, const std::vector<std::filesystem::path>& folders)
{
    // A name leads nowhere else than into the folders.
    const auto file = std::filesystem::path(name.value_or("")).filename();
    if (file.empty())
        return {};
    for (const auto& candidate : { std::filesystem::path(file).replace_extension(".wav"), file }) {
        for (const auto& folder : folders) {
            std::error_code error;
            if (std::filesystem::is_regular_file(folder / candidate, error))
                return { .file = folder / candidate };
        }
    }
    return {};
}

}
