#include "app/LoginItemRegistration.h"

#include "platform/MainLoop.h"
#include "platform/SystemLog.h"

namespace brevanta {

namespace {

constexpr int mostAttempts = 5;
constexpr double firstDelay = 2;

// "1st attempt", for numbers up to ten.
std::string attemptNumber(int number)
{
    const auto* const ending = number == 1 ? "st" : number == 2 ? "nd" : number == 3 ? "rd" : "th";
    return std::to_string(number) + ending + " attempt";
}

}

std::optional<double> secondsToNextLoginItemAttempt(int failedAttempt)
{
    if (failedAttempt < 1 || failedAttempt >= mostAttempts)
        return std::nullopt;
    return firstDelay * static_cast<double>(1U << static_cast<unsigned>(failedAttempt - 1));
}

LoginItemRegistration::LoginItemRegistration(LoginItem& item, MainLoop& mainLoop, SystemLog& log)
    : m_item(item)
    , m_mainLoop(mainLoop)
    , m_log(log)
{
}

LoginItemRegistration::~LoginItemRegistration() = default;

void LoginItemRegistration::begin()
{
    m_item.readStatus(m_life.guard([this](LoginItemStatus status) { statusArrived(status); }));
}

void LoginItemRegistration::statusArrived(LoginItemStatus status)
{
    switch (status) {
    case LoginItemStatus::enabled:
        return;
    case LoginItemStatus::requiresApproval:
        return m_log.log("[LoginItem] switched off by the user: not registered again");
    case LoginItemStatus::notRegistered:
    case LoginItemStatus::notFound: // The answer before the first registration too.
        return attempt();
    }
}

void LoginItemRegistration::attempt()
{
    ++m_attempts;
    m_item.registerApplication(
        m_life.guard([this](const std::expected<void, LoginItemError>& result) { ended(result); }));
}

void LoginItemRegistration::ended(const std::expected<void, LoginItemError>& result)
{
    if (result)
        return m_log.log("[LoginItem] registered after the " + attemptNumber(m_attempts));
    if (const auto delay = secondsToNextLoginItemAttempt(m_attempts))
        m_retry = m_mainLoop.startTimer(*delay, TimerRepeat::once, [this] { attempt(); });
    else
        m_log.log("[LoginItem] register failed after the " + attemptNumber(m_attempts) + ": " + result.error().message);
}

}
