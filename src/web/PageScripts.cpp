#include "web/PageScripts.h"

#include "base/JsonWriter.h"
#include "daemon/BlockingStatus.h"

#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

std::string stateEvent(const std::string& name, const Json& state)
{
    return "window.dispatchEvent(new CustomEvent('" + name + "', { detail: " + json::scriptText(state) + " }));";
}

}

void PageScripts::appendBlockingStatus(std::string& out, const BlockingStatus& status)
{
    out += "window.dispatchEvent(new CustomEvent('kestrelune_blocking_status', {\n"
           "    detail: {\n"
           "        blocking: ";
    out += status.blocking ? "true" : "false";
    out += ",\n        energy: ";
    json::appendNumber(out, status.energy);
    out += ",\n        blockedDomains: ";
    json::appendStringArray(out, status.blockedDomains);
    out += ",\n        blockedApps: ";
    json::appendStringArray(out, status.blockedApps);
    out += "\n    }\n}));";
}

std::string PageScripts::appPicked(std::string_view bundleId, std::string_view name, std::string_view icon)
{
    std::string script = "window.dispatchEvent(new CustomEvent('kestrelune_app_picked', { detail: {\"bundle_id\":";
    script += json::scriptText(bundleId);
    script += ",\"name\":";
    script += json::scriptText(name);
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
