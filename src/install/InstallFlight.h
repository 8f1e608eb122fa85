#pragma once

#include "base/LifeToken.h"
#include "install/InstallFailure.h"
#include "install/InstallScript.h"
#include "install/RemovalScript.h"
#include "install/ServiceInstaller.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <string>
#include <vector>

namespace brevanta {

class Administrator;
class SystemLog;
struct AdministratorError;

// How it ended.
enum class InstallOutcome { installed, removed, cancelled, failed };

// The one install of the blocking service at a time, or its removal by an administrator, from the question for the
// password to its end. Main thread only.
class InstallFlight final : public ServiceInstaller {
public:
    struct Dependencies {
        Administrator& administrator;
        SystemLog& log;
        // The paths of this installation, or why there are none: "Could not locate the app bundle." or "Daemon file
        // missing from bundle:" with the path. Asked anew for each install.
        std::function<std::expected<InstallPaths, std::string>()> paths;
        std::function<std::string(const std::string&)> scrub; // Takes secrets out of what is told of a failure.
        std::function<void(const InstallFailure&)> showFailure; // An alert of its own, for the task at hand.
        std::function<void()> changed; // The flight has begun or ended.
    };

    explicit InstallFlight(Dependencies dependencies);

    void begin() override;
    [[nodiscard]] bool isInFlight() const override;

    // As `begin`, for a removal: `script` is the text of removalScript.
    void beginRemoval(const std::string& script);

    // Of the flight under way, or of the last one.
    [[nodiscard]] FlightTask task() const { return m_task; }

    // Rises with each flight that begins; 0 before the first.
    [[nodiscard]] std::uint64_t generation() const;

    // Called once when the flight under way has ended, after the user was told; waiters are called in their order.
    // Without a flight under way it is called at once, from inside this call, with the last one's outcome, which is
    // `cancelled` before the first.
    void whenEnded(std::function<void(InstallOutcome)> waiter);

private:
    enum class Start { begun, underWay };

    [[nodiscard]] Start start(FlightTask task);
    void run(const std::string& script, std::string_view prompt);
    void answered(const std::expected<std::string, AdministratorError>& answer);
    void failed(const InstallFailure& failure);
    void ended(InstallOutcome outcome);

    Dependencies m_dependencies;
    std::uint64_t m_generation { 0 };
    bool m_inFlight { false };
    FlightTask m_task { FlightTask::install };
    InstallOutcome m_lastOutcome { InstallOutcome::cancelled };
    std::vector<std::function<void(InstallOutcome)>> m_waiters;
    LifeToken m_life;
};

}
