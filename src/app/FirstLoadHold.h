#pragma once

#include "app/LaunchHold.h"

#include <functional>
#include <memory>
#include <string>

namespace brevanta {

class MainLoop;
class Timer;

// Carries out what LaunchHold decides. Main thread only.
class FirstLoadHold {
public:
    // `release` is called once, with the reason for the log.
    FirstLoadHold(MainLoop& mainLoop, std::function<void(const std::string& reason)> release);
    ~FirstLoadHold();
    FirstLoadHold(const FirstLoadHold&) = delete;
    FirstLoadHold& operator=(const FirstLoadHold&) = delete;

    void arm();
    void activationSettled(const LaunchActivationOutcome& outcome);

private:
    void feed(const LaunchHold::Event& event);
    [[nodiscard]] std::unique_ptr<Timer> timer(double after, const LaunchHold::Event& event);

    MainLoop& m_mainLoop;
    std::function<void(const std::string&)> m_release;
    LaunchHold m_hold;
    std::unique_ptr<Timer> m_deadline;
    std::unique_ptr<Timer> m_grace;
};

}
