#pragma once

#include "service/CoinBalance.h"
#include "service/Credential.h"
#include "service/EntryLists.h"
#include "service/FilterReportJudge.h"
#include "service/NoticeQueues.h"
#include "service/RemovalHandshake.h"

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>

namespace brevanta::service {

// What tells one run of the service from another, and places its own clock (seconds since the start) in the machine's.
struct ServiceIdentity {
    std::string bootId;
    std::string launch;
    std::uint64_t launchOrder = 1;
    std::string leaseBootSession;
    double epochAtStart = 0;
    std::uint64_t uptimeAtStartNs = 0;
    std::optional<std::string> version {};
};

// All that the service knows, and the status reply made from it. It reads no clock: `advance` tells it the time, in
// seconds since its start, and comes before every other call.
class ServiceState {
public:
    explicit ServiceState(ServiceIdentity);

    void advance(double now);

    Credential& credential() { return m_credential; }
    CoinBalance& coins() { return m_coins; }
    RemovalHandshake& removal() { return m_removal; }
    NoticeQueues& notices() { return m_notices; }
    FilterReportJudge& filterReports() { return m_filterReports; }

    [[nodiscard]] double now() const { return m_now; }
    [[nodiscard]] double epoch() const { return m_identity.epochAtStart + m_now; }

    void setEnergy(double);
    void startTask(std::string title, double earnPerMinute);
    void endTask();
    void block(std::string reason);
    // Lifts the present block, an empty balance included: that blocks again when it runs out the next time.
    void unblock();
    void setListCount(std::string_view key, std::size_t count);
    void setVersion(std::optional<std::string> version) { m_version = std::move(version); }
    void setBootId(std::string bootId) { m_identity.bootId = std::move(bootId); }
    void trackApp(const std::string& bundleId, double budgetSeconds);
    void endTracking() { m_trackSessions = nlohmann::json::array(); }

    // Any key of the reply can be given any value, or be left out of it, whatever the state says.
    void overrideKey(const std::string& key, nlohmann::json value);
    // Takes an override back; a key that has none is left out from now on.
    void unsetKey(const std::string& key);
    void restoreKey(const std::string& key);
    void restoreAllKeys();

    void queueRemoval(const std::string& account);
    [[nodiscard]] RemovalHandshake::CredentialStanding credentialStanding() const;

    // The reply as JSON text, with the answer to the filter report that came with the request.
    [[nodiscard]] std::string statusReply(const std::optional<std::string>& filterAnswer);
    // The shortest reply that a client can still decode.
    [[nodiscard]] std::string minimalReply() const;
    // One value of the reply as JSON text.
    [[nodiscard]] std::optional<std::string> replyValue(const std::string& key);

private:
    [[nodiscard]] std::optional<std::string> blockReason() const;
    [[nodiscard]] nlohmann::json ownValues() const;
    [[nodiscard]] nlohmann::json shortValues() const;
    [[nodiscard]] std::optional<std::string> listValue(const std::string& key) const;
    [[nodiscard]] const std::string& listsText();
    void noteOverrideChange(const std::string& key);

    ServiceIdentity m_identity;
    double m_now = 0;
    CoinBalance m_coins;
    Credential m_credential;
    RemovalHandshake m_removal;
    NoticeQueues m_notices;
    FilterReportJudge m_filterReports;
    EntryLists m_lists;
    std::optional<std::string> m_version;
    std::optional<std::string> m_orderedBlock;
    bool m_isSpentBalanceExcused = false;
    std::optional<std::string> m_taskTitle;
    double m_taskEarnPerMinute = 0;
    nlohmann::json m_trackSessions = nlohmann::json::array();
    std::int64_t m_lastTrackSession = 0;

    std::map<std::string, nlohmann::json> m_overrides;
    std::set<std::string> m_hiddenKeys;
    // The long lists as they stand in the reply; absent after a change.
    std::optional<std::string> m_listsText;
};

}
