#include "install/ScriptFragments.h"

#include "base/Text.h"
#include "install/InstallScript.h"

namespace brevanta::ScriptFragments {

std::string startWasRefused()
{
    return "launchd did not accept the blocking service after " + std::to_string(bootstrapAttempts)
        + " attempts over about " + formatFixed(bootstrapAttempts * secondsBetweenAttempts, 0)
        + " seconds (Input/output error, the previous service is still registered). Choose Restart Blocking Service "
          "from the menu to try again.";
}

std::string quoted(const std::filesystem::path& path) { return shellQuoted(path.string()); }

std::string toStandardError(std::string_view message) { return "echo " + shellQuoted(message) + " >&2"; }

std::string bootOut(std::string_view label)
{
    return "(launchctl bootout system/" + std::string(label) + " 2>/dev/null || true)";
}

// launchd forgets the service only once its process has ended; until then it takes no new one of the name.
std::string stopService()
{
    return bootOut(serviceLabel) + "; i=0; while launchctl print system/" + std::string(serviceLabel)
        + " >/dev/null 2>&1; do i=$((i+1)); if " + serviceHasNotStopped() + "; then break; fi; sleep 0.1; done";
}

std::string serviceHasNotStopped() { return "[ $i -ge 100 ]"; }

std::string removalMarkerIsThere(const InstallPaths& paths)
{
    const auto marker = quoted(paths.removalMarker());
    return "[ -e " + marker + " ] || [ -L " + marker + " ]";
}

std::string underRemovalLock(const InstallPaths& paths, std::string_view script)
{
    const auto lock = quoted(paths.removalLock());
    return "(umask 077; : >> " + lock + ") && chmod 600 " + lock + " && " + quoted(paths.lockf()) + " -s -k -t 120 "
        + lock + " /bin/sh -c " + shellQuoted(script) + " || { rc=$?; if [ $rc -eq 75 ]; then "
        + toStandardError(removalIsUnderWay) + "; fi; exit $rc; }";
}

}
