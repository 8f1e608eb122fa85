#include "web/ShellLoadReducer.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <limits>

namespace brevanta {

namespace {

using Command = ShellLoadCommand;

constexpr std::array retryDelays { 1.0, 2.0, 4.0, 8.0, 16.0, 30.0 };
constexpr std::array retryTimeouts { 20.0, 30.0, 45.0, 60.0 };
constexpr double loadTimeout = 20;
constexpr double crashLoopSeconds = 10;

constexpr std::string_view urlErrorDomain = "NSURLErrorDomain";
constexpr std::int64_t cancelled = -999;

// Timed out, cannot find host, cannot connect, connection lost, DNS lookup failed, not connected, bad server response,
// cannot parse response: what passes by itself. NSURLError codes, Foundation's documentation.
constexpr std::array<std::int64_t, 8> retryableCodes { -1001, -1003, -1004, -1005, -1006, -1009, -1011, -1017 };

bool isCancelled(const ShellLoadEvent::DidFail& failure)
{
    return failure.domain == urlErrorDomain && failure.code == cancelled;
}

bool isRetryable(const ShellLoadEvent::DidFail& failure)
{
    return failure.domain == urlErrorDomain && std::ranges::find(retryableCodes, failure.code) != retryableCodes.end();
}

template <std::size_t size> double entryOf(const std::array<double, size>& table, std::int64_t index)
{
    return table[static_cast<std::size_t>(std::clamp<std::int64_t>(index, 0, static_cast<std::int64_t>(size) - 1))];
}

Command show(ShellPlaceholderState state) { return { Command::ShowPlaceholder { state } }; }
Command hidePlaceholder() { return { Command::HidePlaceholder {} }; }
Command cancelRetry() { return { Command::CancelRetry {} }; }

std::string_view describe(ShellPlaceholderState state)
{
    switch (state) {
    case ShellPlaceholderState::loading:
        return "loading";
    case ShellPlaceholderState::retrying:
        return "retrying";
    case ShellPlaceholderState::unreachable:
        break;
    }
    return "unreachable";
}

struct CommandDescription {
    std::string operator()(const Command::Load& load) const
    {
        return "load(" + std::to_string(load.generation) + ", " + formatFixed(load.timeout, 1) + ")";
    }
    std::string operator()(const Command::ReloadFromOrigin& reload) const
    {
        return "reloadFromOrigin(" + std::to_string(reload.generation) + ")";
    }
    std::string operator()(const Command::Adopt& adopt) const
    {
        return "adopt(" + std::to_string(adopt.generation) + ")";
    }
    std::string operator()(const Command::ScheduleRetry& retry) const
    {
        return "scheduleRetry(" + std::to_string(retry.generation) + ", after: " + formatFixed(retry.after, 1) + ")";
    }
    std::string operator()(const Command::ShowPlaceholder& placeholder) const
    {
        return "showPlaceholder(" + std::string(describe(placeholder.state)) + ")";
    }
    std::string operator()(const Command::CancelRetry&) const { return "cancelRetry"; }
    std::string operator()(const Command::HidePlaceholder&) const { return "hidePlaceholder"; }
};

}

std::vector<ShellLoadCommand> ShellLoadReducer::reduce(const ShellLoadEvent& event)
{
    return std::visit([this](const auto& what) { return on(what); }, event.what);
}

ShellLoadReducer::Commands ShellLoadReducer::on(const ShellLoadEvent::Prepare&)
{
    m_prepared = true;
    return firstLoadIfAllowed();
}

ShellLoadReducer::Commands ShellLoadReducer::on(const ShellLoadEvent::Release&)
{
    m_released = true;
    return firstLoadIfAllowed();
}

ShellLoadReducer::Commands ShellLoadReducer::firstLoadIfAllowed()
{
    if (!m_prepared || !m_released || m_phase != ShellLoadPhase::blank || m_inFlight || m_retryArmed)
        return {};
    const auto generation = takeGeneration();
    startNavigation(generation, ShellLoadPhase::blank);
    return { { Command::Load { generation, loadTimeout } } };
}

ShellLoadReducer::Commands ShellLoadReducer::on(const ShellLoadEvent::DidCommit& event)
{
    if (m_inFlight != event.generation)
        return {};
    m_phase = ShellLoadPhase::committed;
    m_priorPhase.reset();
    return { hidePlaceholder() };
}

ShellLoadReducer::Commands ShellLoadReducer::on(const ShellLoadEvent::DidFinish& event)
{
    if (m_inFlight != event.generation)
        return {};
    m_phase = ShellLoadPhase::usable;
    m_inFlight.reset();
    m_priorPhase.reset();
    m_attempt = 0;
    m_retryArmed.reset();
    return { cancelRetry(), hidePlaceholder() };
}

ShellLoadReducer::Commands ShellLoadReducer::on(const ShellLoadEvent::DidFail& event)
{
    if (m_inFlight != event.generation)
        return {};
    m_inFlight.reset();
    const bool fellOverAPage = m_phase == ShellLoadPhase::provisional && wasShowing();
    const auto fallBack = m_priorPhase;
    m_priorPhase.reset();

    if (isCancelled(event)) {
        if (m_phase == ShellLoadPhase::provisional)
            m_phase = fellOverAPage ? *fallBack : ShellLoadPhase::blank;
        return {};
    }
    if (fellOverAPage) {
        m_phase = *fallBack; // The page that was showing stays, whatever the error.
        return {};
    }
    m_phase = ShellLoadPhase::blank;
    if (isRetryable(event))
        return retryLater();
    return { show(ShellPlaceholderState::unreachable) };
}

ShellLoadReducer::Commands ShellLoadReducer::on(const ShellLoadEvent::RetryTimerFired& event)
{
    if (m_retryArmed != event.generation || m_inFlight)
        return {};
    m_retryArmed.reset();
    startNavigation(event.generation, m_phase);
    return { { Command::Load { event.generation, entryOf(retryTimeouts, m_attempt) } } };
}

ShellLoadReducer::Commands ShellLoadReducer::on(const ShellLoadEvent::ContentProcessTerminated& event)
{
    const auto previous = m_lastTermination;
    m_lastTermination = event.uptime;
    m_priorPhase.reset();
    m_phase = ShellLoadPhase::blank;
    m_inFlight.reset();
    m_retryArmed.reset();
    Commands commands { cancelRetry(), show(ShellPlaceholderState::loading) };
    if (!m_prepared || !m_released)
        return commands;
    if (previous && event.uptime - *previous < crashLoopSeconds) {
        std::ranges::move(retryLater(), std::back_inserter(commands));
        return commands;
    }
    const auto generation = takeGeneration();
    startNavigation(generation, ShellLoadPhase::blank);
    commands.push_back({ Command::Load { generation, loadTimeout } });
    return commands;
}

ShellLoadReducer::Commands ShellLoadReducer::on(const ShellLoadEvent::ForeignNavigationStarted&)
{
    const auto priorPhase
        = m_phase == ShellLoadPhase::provisional ? m_priorPhase.value_or(ShellLoadPhase::blank) : m_phase;
    const auto generation = takeGeneration();
    startNavigation(generation, priorPhase);
    m_retryArmed.reset();
    return { cancelRetry(), { Command::Adopt { generation } } };
}

ShellLoadReducer::Commands ShellLoadReducer::on(const ShellLoadEvent::UserRetry&)
{
    if (!m_prepared || !m_released)
        return {};
    if (isShowing())
        return reload();
    if (m_inFlight)
        return {};
    m_retryArmed.reset();
    m_attempt = 0;
    const auto generation = takeGeneration();
    startNavigation(generation, m_phase);
    return { cancelRetry(), show(ShellPlaceholderState::loading), { Command::Load { generation, loadTimeout } } };
}

ShellLoadReducer::Commands ShellLoadReducer::on(const ShellLoadEvent::Recover&)
{
    return isShowing() ? reload() : Commands {};
}

// Never shows the placeholder: when it fails, the page that shows now is kept.
ShellLoadReducer::Commands ShellLoadReducer::reload()
{
    const auto generation = takeGeneration();
    startNavigation(generation, m_phase);
    m_retryArmed.reset();
    m_attempt = 0;
    return { cancelRetry(), { Command::ReloadFromOrigin { generation } } };
}

ShellLoadReducer::Commands ShellLoadReducer::retryLater()
{
    ++m_attempt;
    const auto generation = takeGeneration();
    m_retryArmed = generation;
    return { show(ShellPlaceholderState::retrying),
        { Command::ScheduleRetry { generation, entryOf(retryDelays, m_attempt - 1) } } };
}

ShellGeneration ShellLoadReducer::takeGeneration()
{
    assert(m_nextGeneration < std::numeric_limits<ShellGeneration>::max());
    return m_nextGeneration++;
}

void ShellLoadReducer::startNavigation(ShellGeneration generation, ShellLoadPhase priorPhase)
{
    m_priorPhase = priorPhase;
    m_inFlight = generation;
    m_phase = ShellLoadPhase::provisional;
}

bool ShellLoadReducer::isShowing() const
{
    return m_phase == ShellLoadPhase::committed || m_phase == ShellLoadPhase::usable;
}

bool ShellLoadReducer::wasShowing() const
{
    return m_priorPhase == ShellLoadPhase::committed || m_priorPhase == ShellLoadPhase::usable;
}

std::string_view describe(ShellLoadPhase phase)
{
    switch (phase) {
    case ShellLoadPhase::blank:
        return "blank";
    case ShellLoadPhase::provisional:
        return "provisional";
    case ShellLoadPhase::committed:
        return "committed";
    case ShellLoadPhase::usable:
        break;
    }
    return "usable";
}

std::string describe(const std::vector<ShellLoadCommand>& commands)
{
    std::string list = "[";
    for (const auto& command : commands) {
        if (list.size() > 1)
            list += ", ";
        list += std::visit(CommandDescription {}, command.what);
    }
    return list + "]";
}

}
