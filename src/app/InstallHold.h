#pragma once

#include "platform/Updater.h"

#include <string>
#include <variant>
#include <vector>

namespace brevanta {

// Keeps the application from ending in the middle of an install of the blocking service: a quit, and the relaunch that
// an update asks for, wait for the install's end. A pure value.
class InstallHold {
public:
    // Whether there is an install under way when the event comes.
    enum class Install { none, inFlight };

    struct QuitAsked {
        Install install { Install::none };
    };
    struct RelaunchAsked {
        Install install { Install::none };
    };
    struct InstallEnded { };
    using Event = std::variant<QuitAsked, RelaunchAsked, InstallEnded>;

    // The answer to what was asked: the first command after each of the two questions is one of these.
    struct Allow {
        bool operator==(const Allow&) const = default;
    };
    struct PutOff {
        bool operator==(const PutOff&) const = default;
    };
    // Feed back InstallEnded, once, when the install under way has ended.
    struct AwaitEnd {
        bool operator==(const AwaitEnd&) const = default;
    };
    struct Log {
        std::string line;
        bool operator==(const Log&) const = default;
    };
    struct ShowQuitHeld {
        bool operator==(const ShowQuitHeld&) const = default;
    };
    // Do what was put off.
    struct Relaunch {
        bool operator==(const Relaunch&) const = default;
    };
    struct Quit {
        bool operator==(const Quit&) const = default;
    };
    using Command = std::variant<Allow, PutOff, AwaitEnd, Log, ShowQuitHeld, Relaunch, Quit>;

    [[nodiscard]] std::vector<Command> reduce(const Event& event);

    bool operator==(const InstallHold&) const = default;

private:
    [[nodiscard]] std::vector<Command> quitAsked(Install install);
    [[nodiscard]] std::vector<Command> relaunchAsked(Install install);
    [[nodiscard]] std::vector<Command> installEnded();
    [[nodiscard]] std::vector<Command> putOff(bool& isHeld, std::string line);

    bool m_isQuitHeld { false };
    bool m_isRelaunchHeld { false };
};

}
