#include "daemon/SharedBlockState.h"

#include "base/JsonWriter.h"

namespace brevanta {

namespace {

// The keys are ours and need no escape.
void appendKey(std::string& out, std::string_view key)
{
    out += out.back() == '{' ? "\"" : ",\"";
    out += key;
    out += "\":";
}

void appendList(std::string& out, std::string_view key, BlockingStatus::List list)
{
    appendKey(out, key);
    json::appendStringArray(out, list);
}

void appendOptional(std::string& out, std::string_view key, const std::optional<std::string>& text)
{
    if (!text)
        return;
    appendKey(out, key);
    json::appendString(out, *text);
}

}

SharedBlockState sharedBlockState(const BlockingStatus& status)
{
    return {
        .shouldBlock = status.blocking,
        .blockedDomains = status.blockedDomains,
        .blockedIPs = status.blockedIPs,
        .autoTrackDomains = status.autoTrackDomains,
        .meteredIPPrefixes = status.meteredIPPrefixes,
        .meteredDomains = status.meteredDomains,
        .apiBaseUrl = status.apiBaseUrl,
        .authToken = status.authToken,
        .blockReason = status.display.blockReason,
        .leaseBootSessionUUID = status.leaseBootSessionUUID,
        .leaseUntilUptimeNs = status.leaseUntilUptimeNs,
        .listStorage = status.listStorage,
    };
}

std::string_view sharedBlockStateFileName(std::string_view environment)
{
    return environment == "dev" ? "block_state.dev.json" : "block_state.json";
}

void appendSharedBlockState(std::string& out, const SharedBlockState& state)
{
    out.push_back('{');
    appendKey(out, "shouldBlock");
    out += state.shouldBlock ? "true" : "false";
    appendList(out, "blockedDomains", state.blockedDomains);
    appendList(out, "blockedIPs", state.blockedIPs);
    appendList(out, "autoTrackDomains", state.autoTrackDomains);
    appendList(out, "meteredIPPrefixes", state.meteredIPPrefixes);
    appendList(out, "meteredDomains", state.meteredDomains);
    appendOptional(out, "apiBaseUrl", state.apiBaseUrl);
    appendOptional(out, "authToken", state.authToken);
    appendOptional(out, "blockReason", state.blockReason);
    appendOptional(out, "leaseBootSessionUUID", state.leaseBootSessionUUID);
    if (state.leaseUntilUptimeNs) {
        appendKey(out, "leaseUntilUptimeNs");
        json::appendInteger(out, *state.leaseUntilUptimeNs);
    }
    out.push_back('}');
}

}
