#include "web/PageScripts.h"

#include "base/JsonWriter.h"
#include "daemon/BlockingStatus.h"

namespace brevanta {

std::string PageScripts::blockingStatus(const BlockingStatus& status)
{
    std::string script = "window.dispatchEvent(new CustomEvent('kestrelune_blocking_status', {\n"
                         "    detail: {\n"
                         "        blocking: ";
    script += status.blocking ? "true" : "false";
    script += ",\n        energy: ";
    json::appendNumber(script, status.energy);
    script += ",\n        blockedDomains: ";
    json::appendStringArray(script, status.blockedDomains);
    script += ",\n        blockedApps: ";
    json::appendStringArray(script, status.blockedApps);
    script += "\n    }\n}));";
    return script;
}

std::string PageScripts::appPicked(std::string_view bundleId, std::string_view name, std::string_view icon)
{
    std::string script = "window.dispatchEvent(new CustomEvent('kestrelune_app_picked', { detail: {\"bundle_id\":";
    json::appendString(script, bundleId);
    script += ",\"name\":";
    json::appendString(script, name);
    script += ",\"icon\":";
    json::appendString(script, icon);
    script += "} }));";
    return script;
}

}
