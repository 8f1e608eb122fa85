#include "service/RemovalExecution.h"

#include <utility>

namespace brevanta::service {

using State = RemovalHandshake::State;

// How long somebody else may have let a lock go without being noticed.
static constexpr double lockRetrySeconds = 0.1;

RemovalExecution::RemovalExecution(Service& service, RemovalOnDisk disk, RemovalTimes times)
    : m_service(service)
    , m_disk(std::move(disk))
{
    auto& removal = m_service.state().removal();
    const auto epoch = m_service.state().epoch();
    const bool hasBegun = m_disk.hasBegun();
    removal.setTimes(times);
    if (hasBegun || m_disk.isRequested())
        removal.resumePending(m_disk.requestedAccount(), epoch);
    if (hasBegun)
        removal.finish(epoch);
    removal.setObserver([this] { noteState(); });
}

RemovalExecution::~RemovalExecution() { m_service.state().removal().setObserver({}); }

std::expected<void, ServiceError> RemovalExecution::advance()
{
    if (m_failure)
        return std::unexpected(*m_failure);
    auto& state = m_service.state();
    if (m_service.isQuitting() || !state.removal().isOver(state.epoch())) {
        m_triesAgainAt.reset();
        return {};
    }
    if (m_triesAgainAt && state.now() < *m_triesAgainAt)
        return {};
    const auto progress = m_disk.erase();
    if (!progress)
        return std::unexpected(progress.error());
    if (*progress == RemovalOnDisk::Progress::done)
        m_service.quit();
    else
        m_triesAgainAt = state.now() + lockRetrySeconds;
    return {};
}

std::optional<double> RemovalExecution::nextAt() const
{
    if (m_triesAgainAt)
        return m_triesAgainAt;
    auto& state = m_service.state();
    const auto at = state.removal().nextAt();
    return at ? std::optional(state.now() + (*at - state.epoch())) : std::nullopt;
}

void RemovalExecution::noteState()
{
    const auto& removal = m_service.state().removal();
    const auto noted = removal.state() == State::none ? m_disk.forgetRequest() : m_disk.noteRequest(removal.account());
    if (!noted && !m_failure)
        m_failure = noted.error();
}

}
