#include "web/ShellLoadCoordinator.h"

#include "platform/Clock.h"
#include "platform/MainLoop.h"
#include "platform/SystemLog.h"
#include "web/LoadFailure.h"

#include <algorithm>
#include <utility>

namespace brevanta {

namespace {

constexpr auto syntheticDomain = "ShellLoadCoordinator";
constexpr std::int64_t syntheticCode = 1;

std::string ofGeneration(const char* what, ShellGeneration generation)
{
    return what + (" gen " + std::to_string(generation));
}

const char* nameOf(ShellRecoverSource source)
{
    switch (source) {
    case ShellRecoverSource::authWatchdog:
        break;
    }
    return "authWatchdog";
}

}

// Which failure the placeholder stands for, where the event is one; the placeholder's own words are the same for all.
static std::string_view failureBehind(const ShellLoadEvent& event)
{
    if (const auto* const failure = std::get_if<ShellLoadEvent::DidFail>(&event.what))
        return plainWords({ failure->domain, failure->code });
    if (std::holds_alternative<ShellLoadEvent::ContentProcessTerminated>(event.what))
        return contentProcessEndedWords;
    return {};
}

PlaceholderContent placeholderContent(ShellPlaceholderState state)
{
    switch (state) {
    case ShellPlaceholderState::loading:
        return { .label = "Loading Brevanta…", .button = {} };
    case ShellPlaceholderState::retrying:
        return { .label = "Brevanta can't be reached right now. Retrying…", .button = "Try Again" };
    case ShellPlaceholderState::unreachable:
        break;
    }
    return { .label = "Brevanta can't be reached right now.", .button = "Try Again" };
}

// What each command does.
struct ShellLoadCoordinator::Execution {
    ShellLoadCoordinator& coordinator;

    void operator()(const ShellLoadCommand::Load& command) const
    {
        coordinator.load(command.generation, command.timeout);
    }
    void operator()(const ShellLoadCommand::ReloadFromOrigin& command) const
    {
        coordinator.m_dependencies.willLoad();
        coordinator.remember(
            command.generation, coordinator.m_dependencies.webView.reloadFromOrigin(), "reloadFromOrigin returned nil");
    }
    void operator()(const ShellLoadCommand::Adopt& command) const
    {
        if (coordinator.m_adopting)
            coordinator.m_navigations.push_back({ command.generation, coordinator.m_adopting, Origin::adopted });
    }
    void operator()(const ShellLoadCommand::ScheduleRetry& command) const
    {
        coordinator.scheduleRetry(command.generation, command.after);
    }
    void operator()(const ShellLoadCommand::ShowPlaceholder& command) const
    {
        coordinator.m_dependencies.placeholder.show(placeholderContent(command.state));
    }
    void operator()(const ShellLoadCommand::CancelRetry&) const { coordinator.m_retryTimer.reset(); }
    void operator()(const ShellLoadCommand::HidePlaceholder&) const { coordinator.m_dependencies.placeholder.hide(); }
};

ShellLoadCoordinator::ShellLoadCoordinator(Dependencies dependencies)
    : m_dependencies(std::move(dependencies))
{
    m_dependencies.placeholder.show(placeholderContent(ShellPlaceholderState::loading));
    m_dependencies.placeholder.setButtonHandler(m_life.guard([this] { userRetry(); }));
}

ShellLoadCoordinator::~ShellLoadCoordinator() { m_dependencies.placeholder.setButtonHandler({}); }

std::vector<ShellLoadCommand> ShellLoadCoordinator::dispatch(const ShellLoadEvent& event, const std::string& reason)
{
    const auto commands = m_reducer.reduce(event);
    if (commands.empty())
        return commands;
    const auto inFlight = m_reducer.inFlight();
    m_dependencies.log.log("[ShellLoad] " + reason + " → phase=" + std::string(describe(m_reducer.phase()))
        + " attempt=" + std::to_string(m_reducer.attempt())
        + " inFlight=" + (inFlight ? std::to_string(*inFlight) : "nil") + " commands=" + describe(commands));
    if (const auto failure = failureBehind(event); !failure.empty())
        m_dependencies.log.log("[ShellLoad] no page is shown: " + std::string(failure));
    for (const auto& command : commands)
        std::visit(Execution { *this }, command.what);
    return commands;
}

void ShellLoadCoordinator::prepare() { dispatch({ ShellLoadEvent::Prepare {} }, "prepared"); }

void ShellLoadCoordinator::release(const std::string& reason)
{
    if (!m_reducer.isReleased())
        dispatch({ ShellLoadEvent::Release {} }, reason);
}

void ShellLoadCoordinator::userRetry() { dispatch({ ShellLoadEvent::UserRetry {} }, "user retry"); }

void ShellLoadCoordinator::windowOpened()
{
    if (m_reducer.phase() == ShellLoadPhase::blank)
        userRetry();
}

ShellLoadCoordinator::Recovery ShellLoadCoordinator::recover(ShellRecoverSource source)
{
    const auto commands
        = dispatch({ ShellLoadEvent::Recover { source } }, "recover(" + std::string(nameOf(source)) + ")");
    const bool reloads = std::ranges::any_of(commands,
        [](const auto& command) { return std::holds_alternative<ShellLoadCommand::ReloadFromOrigin>(command.what); });
    return reloads ? Recovery::started : Recovery::deferred;
}

void ShellLoadCoordinator::didStartProvisional(const WebNavigation& navigation)
{
    if (!navigation || generationOf(navigation))
        return;
    m_adopting = navigation;
    dispatch({ ShellLoadEvent::ForeignNavigationStarted {} }, "foreign navigation started");
    m_adopting.reset();
}

void ShellLoadCoordinator::didCommit(const WebNavigation& navigation)
{
    if (const auto generation = generationOf(navigation))
        dispatch({ ShellLoadEvent::DidCommit { *generation } }, ofGeneration("didCommit", *generation));
}

void ShellLoadCoordinator::didFinish(const WebNavigation& navigation)
{
    const auto generation = generationOf(navigation);
    if (!generation)
        return;
    forget(*generation);
    dispatch({ ShellLoadEvent::DidFinish { *generation } }, ofGeneration("didFinish", *generation));
}

void ShellLoadCoordinator::didFail(const WebNavigation& navigation, const WebError& error)
{
    const auto generation = generationOf(navigation);
    if (!generation)
        return;
    forget(*generation);
    dispatch({ ShellLoadEvent::DidFail { *generation, error.domain, error.code } },
        ofGeneration("didFail", *generation) + " " + error.domain + " " + std::to_string(error.code));
}

void ShellLoadCoordinator::contentProcessDidTerminate()
{
    m_navigations.clear();
    dispatch({ ShellLoadEvent::ContentProcessTerminated { m_dependencies.clock.uptimeSeconds() } },
        "content process terminated");
}

bool ShellLoadCoordinator::awaitsOwnNavigation() const
{
    return std::ranges::any_of(m_navigations, [this](const Navigation& navigation) {
        return navigation.generation == m_reducer.inFlight() && navigation.origin == Origin::own;
    });
}

// An engine that names no navigation can only mean the one that is awaited.
std::optional<ShellGeneration> ShellLoadCoordinator::generationOf(const WebNavigation& navigation) const
{
    if (!navigation) {
        const bool isUnmistakable
            = m_navigations.size() == 1 && m_navigations.front().generation == m_reducer.inFlight();
        return isUnmistakable ? m_reducer.inFlight() : std::nullopt;
    }
    const auto found = std::ranges::find(m_navigations, navigation, &Navigation::navigation);
    return found == m_navigations.end() ? std::nullopt : std::optional(found->generation);
}

void ShellLoadCoordinator::forget(ShellGeneration generation)
{
    std::erase_if(m_navigations, [&](const Navigation& entry) { return entry.generation == generation; });
}

void ShellLoadCoordinator::remember(ShellGeneration generation, const WebNavigation& navigation, const char* failure)
{
    if (navigation)
        m_navigations.push_back({ generation, navigation, Origin::own });
    else
        failLater(generation, failure);
}

// Later, so that an event is never dispatched while the commands of another are being carried out.
void ShellLoadCoordinator::failLater(ShellGeneration generation, const std::string& message)
{
    m_dependencies.mainLoop.post(m_life.guard([this, generation, message] {
        dispatch({ ShellLoadEvent::DidFail { generation, syntheticDomain, syntheticCode } },
            "synthetic failure: " + message);
    }));
}

void ShellLoadCoordinator::load(ShellGeneration generation, double timeout)
{
    const auto url = m_dependencies.appUrl();
    if (!url)
        return failLater(generation, "no app URL");
    m_dependencies.willLoad();
    remember(generation, m_dependencies.webView.load(*url, timeout), "load returned nil");
}

void ShellLoadCoordinator::scheduleRetry(ShellGeneration generation, double after)
{
    m_retryTimer = m_dependencies.mainLoop.startTimer(after, TimerRepeat::once, m_life.guard([this, generation] {
        dispatch({ ShellLoadEvent::RetryTimerFired { generation } }, ofGeneration("retry timer", generation));
    }));
}

}
