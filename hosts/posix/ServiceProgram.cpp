#include "posix/ServiceProgram.h"

#include <sys/stat.h>

namespace brevanta {

std::filesystem::path serviceProgram(const std::filesystem::path& root)
{
    return root / "Library/PrivilegedHelperTools/com.brevanta.daemon";
}

bool isServiceProgramInstalled(const std::filesystem::path& root)
{
    struct stat status {};
    return !::stat(serviceProgram(root).c_str(), &status) && S_ISREG(status.st_mode);
}

std::optional<LaunchCheck> launchCheck(LaunchdAnswer answer, const std::filesystem::path& root)
{
    if (answer == LaunchdAnswer::loaded)
        return LaunchCheck::loaded;
    if (answer == LaunchdAnswer::unknown)
        return std::nullopt;
    return isServiceProgramInstalled(root) ? LaunchCheck::notRunning : LaunchCheck::notInstalled;
}

}
