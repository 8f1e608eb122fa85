#include "install/RemovalScript.h"

#include "base/JsonWriter.h"
#include "install/InstallScript.h"
#include "install/ScriptFragments.h"

#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

using namespace ScriptFragments;

// The script's status when the service did not stop: the next one behind those of the install script.
constexpr int didNotStopStatus = 80;

std::string jsonText(const RemovalHandover& handover)
{
    Json text { { "launch", handover.launch } };
    if (handover.account)
        text["account"] = *handover.account;
    if (handover.actionId)
        text["action_id"] = *handover.actionId;
    return json::scriptText(text);
}

// A marker that is there already belongs to a removal that was cut short. This one takes that up, and leaves the marker
// if it fails too.
std::string leaveMarker(const InstallPaths& paths)
{
    return "own=; if ! { " + removalMarkerIsThere(paths) + "; }; then (umask 077; : > " + quoted(paths.removalMarker())
        + ") || exit; own=yes; fi";
}

// Ends the script with the status that it is given.
std::string defineGivingUp(const InstallPaths& paths)
{
    return R"(giveUp() { rm -f "$temporary"; if [ -n "$own" ]; then rm -f )" + quoted(paths.removalMarker())
        + "; fi; exit $1; }";
}

// A service that is started again, because it could not be stopped or the removal was cut short, goes on with it.
std::string leaveHandover(const InstallPaths& paths, const RemovalHandover& handover)
{
    const auto support = quoted(paths.supportFolder());
    const auto left = quoted(paths.supportFolder() / "removal-handover.json");
    return "temporary=" + support + R"("/removal-handover.$(date +%s).$$.json"; )" + "{ mkdir -p " + support
        + R"( && (umask 077; printf '%s\n' )" + shellQuoted(jsonText(handover))
        + R"( > "$temporary" && mv -f "$temporary" )" + left + " && cp " + left + " "
        + quoted(paths.supportFolder() / "removal-requested") + "); } || giveUp $?";
}

}

std::string removalScript(const InstallPaths& paths, const RemovalHandover& handover)
{
    const auto marker = quoted(paths.removalMarker());
    // The program goes late: until then a service that is started again can finish what was cut short.
    return underRemovalLock(paths,
        leaveMarker(paths) + "; " + defineGivingUp(paths) + "; " + leaveHandover(paths, handover) + "; " + stopService()
            + "; if " + serviceHasNotStopped() + "; then " + toStandardError(didNotStop) + "; giveUp "
            + std::to_string(didNotStopStatus) + "; fi; rm -rf " + quoted(paths.supportFolder()) + " "
            + quoted(paths.propertyList()) + " " + quoted(paths.program()) + " && rm -rf " + marker);
}

}
