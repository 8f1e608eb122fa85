#include "install/RemovalShell.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace brevanta {

namespace {

// Seconds after the time by which the service wanted to be done.
constexpr double patience = 30;

const char* textOf(RemovalSnapshot::State state)
{
    switch (state) {
    case RemovalSnapshot::State::none:
        return "none";
    case RemovalSnapshot::State::pending:
        return "pending";
    case RemovalSnapshot::State::committed:
        return "committed";
    case RemovalSnapshot::State::finishing:
        break;
    }
    return "finishing";
}

template <typename Value> Json orNull(const std::optional<Value>& value) { return value ? Json(*value) : Json(); }

}

RemovalShell::Change RemovalShell::statusArrived(const RemovalStatusField& removal)
{
    const auto before = *this;
    m_statusAvailable = true;
    m_daemonGone = false; // It answers: the poll that failed was not its end.
    if (removal.snapshot && isNews(*removal.snapshot))
        accept(*removal.snapshot);
    else if (removal.snapshot && isNewestAgain(*removal.snapshot))
        m_daemonReplied = true;
    return *this == before ? Change::none : Change::changed;
}

RemovalShell::Change RemovalShell::statusFailed(Listener listener, ServiceProgram program)
{
    const auto before = *this;
    m_statusAvailable = false;
    if (m_sawCommit && listener == Listener::none && program == ServiceProgram::absent) {
        m_daemonGone = true;
        m_daemonReplied = false;
        m_fence.reset();
    }
    return *this == before ? Change::none : Change::changed;
}

RemovalShell::Change RemovalShell::serviceInstalled()
{
    const auto before = std::exchange(*this, {});
    return *this == before ? Change::none : Change::changed;
}

bool RemovalShell::isNews(const RemovalSnapshot& snapshot) const
{
    if (!m_fence)
        return true;
    if (m_fence->launch == snapshot.launch)
        return snapshot.seq > m_fence->seq;
    return snapshot.launchOrder > m_fence->launchOrder;
}

bool RemovalShell::isNewestAgain(const RemovalSnapshot& snapshot) const
{
    return m_fence && m_fence->launch == snapshot.launch && m_fence->seq == snapshot.seq;
}

void RemovalShell::accept(const RemovalSnapshot& snapshot)
{
    // Within one launch its order stands as it was first given.
    const bool sameLaunch = m_fence && m_fence->launch == snapshot.launch;
    m_fence = Fence { snapshot.launch, sameLaunch ? m_fence->launchOrder : snapshot.launchOrder, snapshot.seq };
    m_snapshot = snapshot;
    m_daemonReplied = true;
    if (snapshot.state == RemovalSnapshot::State::committed || snapshot.state == RemovalSnapshot::State::finishing)
        m_sawCommit = true;
}

bool RemovalShell::isFinishing() const
{
    return m_daemonReplied && m_snapshot.state == RemovalSnapshot::State::finishing;
}

std::optional<RemovalHandover> RemovalShell::overdue(double wallSeconds, ServiceProgram program) const
{
    if (!isFinishing() || program == ServiceProgram::absent || !m_snapshot.finishingBy
        || wallSeconds - *m_snapshot.finishingBy < patience)
        return std::nullopt;
    return RemovalHandover {
        .account = m_snapshot.account, .actionId = m_snapshot.actionId, .launch = m_snapshot.launch
    };
}

std::string RemovalShell::stateText() const
{
    if (isRemoved())
        return "removed";
    if (m_daemonReplied && m_statusAvailable)
        return textOf(m_snapshot.state);
    return "unavailable";
}

std::string RemovalShell::step() const
{
    if (isRemoved())
        return "removed";
    if (!m_daemonReplied)
        return {};
    std::string step = textOf(m_snapshot.state);
    if (m_snapshot.queueError)
        step += ", not queued: " + *m_snapshot.queueError;
    return step;
}

Json RemovalShell::state(bool filterRemovable) const
{
    Json state = {
        { "schema", 1 },
        { "state", stateText() },
        { "origin", orNull(m_snapshot.origin) },
        { "expiresAt", orNull(m_snapshot.expiresAt) },
        { "actionId", orNull(m_snapshot.actionId) },
        { "queueError", orNull(m_snapshot.queueError) },
        { "account", orNull(m_snapshot.account) },
        { "requesting", m_snapshot.requesting },
        { "filterRemovable", filterRemovable },
    };
    if (m_snapshot.finishingBy)
        state["finishingBy"] = *m_snapshot.finishingBy;
    if (isFinishing())
        state["blockingOff"] = m_snapshot.blockingOff;
    return state;
}

}
