#include "service/RemovalHandshake.h"

#include "service/RecordIdentifiers.h"

#include <algorithm>
#include <utility>

namespace brevanta::service {

static constexpr double pendingSeconds = 300;
static constexpr double finishingSeconds = 30;

static const char* nameOf(RemovalHandshake::State state)
{
    switch (state) {
    case RemovalHandshake::State::none:
        return "none";
    case RemovalHandshake::State::pending:
        return "pending";
    case RemovalHandshake::State::committed:
        return "committed";
    case RemovalHandshake::State::finishing:
        return "finishing";
    }
    return "none";
}

bool isAccount(const std::string& text)
{
    return !text.empty() && text.size() <= 32
        && std::ranges::all_of(text, [](char character) { return character >= '0' && character <= '9'; });
}

RemovalHandshake::RemovalHandshake(std::string launch, std::uint64_t launchOrder)
    : m_launch(std::move(launch))
    , m_launchOrder(launchOrder)
    , m_lastActionId(firstIdentifierOfLaunch(launchOrder))
{
}

void RemovalHandshake::queue(const std::string& account, CredentialStanding credential, double epoch)
{
    if (m_state == State::committed || m_state == State::finishing)
        return refuse("committed");
    if (credential == CredentialStanding::missing)
        return refuse("no_credential");
    if (credential == CredentialStanding::invalid)
        return refuse("credential_invalid");
    if (!isAccount(account))
        return refuse("rejected");
    if ((m_serviceAccount && account != *m_serviceAccount)
        || (m_state == State::pending && m_account && account != *m_account))
        return refuse("account_mismatch");
    start("in_app", account, epoch, pendingSeconds);
}

void RemovalHandshake::cancel(std::int64_t actionId, const std::string& account)
{
    if (m_state == State::committed || m_state == State::finishing)
        return refuse("committed");
    if (m_state == State::none)
        return refuse("not_pending");
    if (m_account && account != *m_account)
        return refuse("account_mismatch");
    // The page saw an older request than the one that is pending now.
    if (actionId != m_actionId)
        return refuse("refreshed");
    clear();
}

void RemovalHandshake::advance(double epoch)
{
    while (m_state == State::pending || m_state == State::committed) {
        const auto at = nextAt();
        if (!at || epoch < *at)
            return;
        if (m_state == State::committed)
            finish(*at);
        else if (m_expiresAt && *m_expiresAt <= *at)
            clear();
        else
            commit(*at);
    }
}

std::optional<double> RemovalHandshake::nextAt() const
{
    if (m_state == State::pending) {
        if (!m_times || !m_expiresAt)
            return m_expiresAt;
        return std::min(*m_expiresAt, m_since + m_times->pending);
    }
    if (!m_times || m_hangs)
        return std::nullopt;
    if (m_state == State::committed)
        return m_since + m_times->committed;
    return m_finishingBy;
}

bool RemovalHandshake::isOver(double epoch) const
{
    return m_state == State::finishing && !m_hangs && m_times && m_finishingBy && epoch >= *m_finishingBy;
}

void RemovalHandshake::resumePending(std::optional<std::string> account, double epoch)
{
    start("in_app", std::move(account), epoch, pendingSeconds);
}

void RemovalHandshake::clear()
{
    become(State::none);
    m_origin.clear();
    m_expiresAt.reset();
    m_actionId.reset();
    m_account.reset();
    noteChange();
}

void RemovalHandshake::makePending(double epoch, double lifetime)
{
    start("in_app", m_account ? m_account : m_serviceAccount, epoch, lifetime);
}

void RemovalHandshake::commit(double epoch)
{
    if (m_state != State::pending)
        makePending(epoch, pendingSeconds);
    become(State::committed);
    m_since = epoch;
    noteChange();
}

void RemovalHandshake::finish(double epoch)
{
    if (m_state != State::committed)
        commit(epoch);
    become(State::finishing);
    m_finishingBy = epoch + (m_times ? m_times->finishing : finishingSeconds);
    noteChange();
}

void RemovalHandshake::hang(double epoch, double secondsOverdue)
{
    finish(epoch);
    m_finishingBy = epoch - secondsOverdue;
    m_hangs = true;
}

void RemovalHandshake::setQueueError(std::optional<std::string> queueError)
{
    ++m_seq;
    m_queueError = std::move(queueError);
}

void RemovalHandshake::setRequesting(bool isRequesting)
{
    ++m_seq;
    m_isRequesting = isRequesting;
}

void RemovalHandshake::setLaunch(std::string launch, std::uint64_t launchOrder)
{
    m_launch = std::move(launch);
    m_launchOrder = launchOrder;
    m_seq = 1;
}

nlohmann::json RemovalHandshake::record() const
{
    nlohmann::json record {
        { "state", nameOf(m_state) },
        { "requesting", m_isRequesting },
        { "launch", m_launch },
        { "launch_order", m_launchOrder },
        { "seq", m_seq },
        { "blocking_off", m_state == State::finishing },
    };
    if (!m_origin.empty())
        record["origin"] = m_origin;
    if (m_expiresAt)
        record["expires_at"] = *m_expiresAt;
    if (m_actionId)
        record["action_id"] = *m_actionId;
    if (m_account)
        record["account"] = *m_account;
    if (m_queueError)
        record["queue_error"] = *m_queueError;
    if (m_finishingBy)
        record["finishing_by"] = *m_finishingBy;
    return record;
}

void RemovalHandshake::become(State state)
{
    ++m_seq;
    m_state = state;
    m_queueError.reset();
    m_finishingBy.reset();
    m_hangs = false;
}

void RemovalHandshake::noteChange() const
{
    if (m_observer)
        m_observer();
}

void RemovalHandshake::refuse(const char* queueError) { setQueueError(queueError); }

void RemovalHandshake::start(std::string origin, std::optional<std::string> account, double epoch, double lifetime)
{
    become(State::pending);
    m_origin = std::move(origin);
    m_account = std::move(account);
    m_expiresAt = epoch + lifetime;
    m_actionId = ++m_lastActionId;
    m_since = epoch;
    noteChange();
}

}
