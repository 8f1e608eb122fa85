#include "web/PageScripts.h"

#include "base/JsonWriter.h"
#include "daemon/BlockingStatus.h"

namespace brevanta {

namespace {

std::string stateEvent(const std::string& name, const Json& state)
{
    return "window.dispatchEvent(new CustomEvent('" + name + "', { detail: " + json::scriptText(state) + " }));";
}

}

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

std::string PageScripts::notificationStatus(std::string_view authorization)
{
    return "window.dispatchEvent(new CustomEvent('kestrelune_notification_status',{ detail: { authorization: '"
        + std::string(authorization) + "' } }));";
}

std::string PageScripts::deviceSetupState(const Json& state)
{
    return stateEvent("kestrelune_device_setup_state", state);
}

std::string PageScripts::removalState(const Json& state) { return stateEvent("kestrelune_removal_state", state); }

std::string PageScripts::updaterState(const Json& state) { return stateEvent("kestrelune_updater_state", state); }

std::string PageScripts::documentStart(std::string_view deviceId, std::string_view deviceName, std::string_view version)
{
    std::string script = "window.__kestreluneDevice = { id: ";
    json::appendString(script, deviceId);
    script += ", name: ";
    json::appendString(script, deviceName);
    script += " };\nwindow.isKestreluneMac = true; window.kestreluneVersion = ";
    json::appendString(script, version);
    script += ";\nwindow.kestreluneCapabilities = { dictation: true };";
    return script;
}

}
