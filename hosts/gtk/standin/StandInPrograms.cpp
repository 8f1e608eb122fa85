#include "gtk/standin/StandInPrograms.h"

#include <unistd.h>

namespace brevanta {

namespace fs = std::filesystem;

namespace {

constexpr const char* macFolders[] = { "bin", "usr/bin", "usr/sbin", "Library/Application Support",
    "Library/LaunchDaemons", "var/db", "var/log", "var/run" };
constexpr const char* programLinks[] = { "bin/launchctl", "usr/bin/lockf", "usr/bin/xattr", "usr/sbin/chown" };

std::expected<void, StandInError> makeFolder(const fs::path& root, const char* name)
{
    std::error_code error;
    const auto folder = root / name;
    fs::create_directories(folder, error);
    // A link to the machine's own folder would have our programs put there.
    const bool isInRoot = !error && fs::canonical(folder, error) == fs::canonical(root, error) / name;
    if (error)
        return standInError(folder.string() + ": " + error.message());
    return isInRoot ? std::expected<void, StandInError>()
                    : standInError(folder.string() + " leads out of the development root");
}

std::expected<void, StandInError> makeLink(const fs::path& link, const fs::path& programs)
{
    std::error_code error;
    const auto program = programs / link.filename();
    if (::access(program.c_str(), X_OK))
        return standInError(program.string() + " is no program that can be run");
    if (fs::read_symlink(link, error) == program)
        return {};
    fs::remove(link, error);
    if (!error)
        fs::create_symlink(program, link, error);
    return error ? standInError(link.string() + ": " + error.message()) : std::expected<void, StandInError>();
}

}

std::expected<void, StandInError> prepareStandInPrograms(const fs::path& root, const fs::path& programs)
{
    for (const auto* const name : macFolders) {
        if (auto made = makeFolder(root, name); !made)
            return made;
    }
    for (const auto* const link : programLinks) {
        if (auto made = makeLink(root / link, programs); !made)
            return made;
    }
    return {};
}

std::string standInSearchPath(const fs::path& root)
{
    std::string path;
    for (const auto* const folder : { "bin", "usr/bin", "usr/sbin" })
        path += (root / folder).string() + ':';
    return path + "/usr/bin:/bin:/usr/sbin:/sbin";
}

}
