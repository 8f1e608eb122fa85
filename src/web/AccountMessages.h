#pragma once

#include "base/LifeToken.h"
#include "daemon/DaemonFailure.h"

#include <cstdint>
#include <expected>
#include <string>

namespace brevanta {

class BridgeTable;
class DaemonClient;
class RemovalShellController;
class SystemLog;
class UserDefaults;
struct BridgeMessage;

// What the page says about the user's account: signing in, signing out, synchronising. Main thread only; a token is
// never logged.
class AccountMessages {
public:
    AccountMessages(
        DaemonClient& daemonClient, const RemovalShellController& removal, UserDefaults& defaults, SystemLog& log);

    void addTokenAndLogout(BridgeTable& table);
    void addForceSync(BridgeTable& table);

    // The user default that counts sign-outs.
    static constexpr auto logoutSequenceKey = "habitReminders.logoutSequence";

private:
    void forwardToken(const BridgeMessage& message);
    void tokenAnswered(
        const std::string& token, std::int64_t sequenceBefore, const std::expected<void, DaemonFailure>& answer);
    void recordLogout();
    void forceSync();
    [[nodiscard]] std::int64_t logoutSequence() const;

    DaemonClient& m_daemonClient;
    const RemovalShellController& m_removal;
    UserDefaults& m_defaults;
    SystemLog& m_log;
    LifeToken m_life;
};

}
