#include "app/InstallHold.h"

#include <utility>

namespace brevanta {

std::vector<InstallHold::Command> InstallHold::reduce(const Event& event)
{
    if (const auto* const quit = std::get_if<QuitAsked>(&event))
        return quitAsked(quit->install);
    if (const auto* const relaunch = std::get_if<RelaunchAsked>(&event))
        return relaunchAsked(relaunch->install);
    return installEnded();
}

std::vector<InstallHold::Command> InstallHold::quitAsked(Install install)
{
    if (install == Install::none)
        return { Allow {} };
    if (m_isQuitHeld)
        return { PutOff {}, Log { "[DaemonInstall] quit already held: ignoring a repeated Quit" } };
    auto commands = putOff(m_isQuitHeld, "[DaemonInstall] quit held until the blocking service install finishes");
    commands.emplace_back(ShowQuitHeld {});
    return commands;
}

std::vector<InstallHold::Command> InstallHold::relaunchAsked(Install install)
{
    if (install == Install::none)
        return { Allow {} };
    return putOff(
        m_isRelaunchHeld, "[DaemonInstall] Sparkle relaunch held until the blocking service install finishes");
}

// The end of the install is awaited once for whatever is held.
std::vector<InstallHold::Command> InstallHold::putOff(bool& isHeld, std::string line)
{
    std::vector<Command> commands { PutOff {}, Log { std::move(line) } };
    if (!m_isQuitHeld && !m_isRelaunchHeld)
        commands.emplace_back(AwaitEnd {});
    isHeld = true;
    return commands;
}

std::vector<InstallHold::Command> InstallHold::installEnded()
{
    std::vector<Command> commands;
    // The relaunch comes first: after the quit there is nobody left to ask for it.
    if (std::exchange(m_isRelaunchHeld, false))
        commands.emplace_back(Relaunch {});
    if (std::exchange(m_isQuitHeld, false)) {
        commands.emplace_back(Log { "[DaemonInstall] install finished: proceeding with the held quit" });
        commands.emplace_back(Quit {});
    }
    return commands;
}

}
