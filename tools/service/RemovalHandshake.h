#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace brevanta::service {

// The removal of the service as the service itself tells it: one record whose `seq` rises at every change, and whose
// launch identity lets a client order the records of two runs.
class RemovalHandshake {
public:
    enum class State { none, pending, committed, finishing };
    enum class CredentialStanding { good, missing, invalid };

    RemovalHandshake(std::string launch, std::uint64_t launchOrder);

    // Requests of the client. What they are refused for stands in the record as "queue_error", until the next change.
    void queue(const std::string& account, CredentialStanding, double epoch);
    void cancel(std::int64_t actionId, const std::string& account);

    // A pending removal that was neither committed nor cancelled lapses.
    void advance(double epoch);

    // What a tester does to it.
    void clear();
    void makePending(double epoch, double lifetime);
    void commit(double epoch);
    void finish(double epoch);
    void setQueueError(std::optional<std::string>);
    void setRequesting(bool);
    void setServiceAccount(std::optional<std::string> account) { m_serviceAccount = std::move(account); }
    void setLaunch(std::string launch, std::uint64_t launchOrder);

    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] nlohmann::json record() const;

private:
    void become(State);
    void refuse(const char* queueError);
    void start(std::string origin, std::optional<std::string> account, double epoch, double lifetime);

    std::string m_launch;
    std::uint64_t m_launchOrder;
    std::uint64_t m_seq = 1;
    std::int64_t m_lastActionId;
    State m_state = State::none;
    std::string m_origin;
    std::optional<double> m_expiresAt;
    std::optional<std::int64_t> m_actionId;
    std::optional<std::string> m_account;
    std::optional<std::string> m_queueError;
    std::optional<double> m_finishingBy;
    std::optional<std::string> m_serviceAccount;
    bool m_isRequesting = false;
};

// One to 32 ASCII digits.
[[nodiscard]] bool isAccount(const std::string&);

}
