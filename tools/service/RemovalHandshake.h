#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace brevanta::service {

// How many seconds a removal stays in each state before it goes on by itself.
struct RemovalTimes {
    double pending = 60;
    double committed = 10;
    double finishing = 30;
};

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

    // With times, a removal that nobody stops goes on by itself up to its end. Without them, which is how it begins, it
    // stays where it is put.
    void setTimes(RemovalTimes times) { m_times = times; }

    // A pending removal that was neither committed nor cancelled lapses; whatever is due comes at its own time, however
    // late the call.
    void advance(double epoch);
    // When `advance` has something to do, or the end comes, unless a request or a command comes before.
    [[nodiscard]] std::optional<double> nextAt() const;
    // Whether the time has come to carry the removal out.
    [[nodiscard]] bool isOver(double epoch) const;

    // Takes up what a run before this one has begun.
    void resumePending(std::optional<std::string> account, double epoch);

    // Called after each change of the state or the account, before anybody is told of it.
    void setObserver(std::function<void()> observer) { m_observer = std::move(observer); }

    // What a tester does to it.
    void clear();
    void makePending(double epoch, double lifetime);
    void commit(double epoch);
    void finish(double epoch);
    // Finishing as well, with an end that was due so many seconds ago, and never comes.
    void hang(double epoch, double secondsOverdue);
    void setQueueError(std::optional<std::string>);
    void setRequesting(bool);
    void setServiceAccount(std::optional<std::string> account) { m_serviceAccount = std::move(account); }
    void setLaunch(std::string launch, std::uint64_t launchOrder);

    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] const std::optional<std::string>& account() const { return m_account; }
    [[nodiscard]] nlohmann::json record() const;

private:
    void become(State);
    void noteChange() const;
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
    std::optional<RemovalTimes> m_times;
    bool m_hangs = false;
    double m_since = 0; // When it became pending or committed.
    std::function<void()> m_observer;
};

// One to 32 ASCII digits.
[[nodiscard]] bool isAccount(const std::string&);

}
