#pragma once

#include "base/LifeToken.h"
#include "daemon/DaemonFailure.h"

#include <cstdint>
#include <expected>
#include <string>

namespace brevanta {

class BridgeTable;
class DaemonClient;
class HabitReminderPresenter;
class RemovalShellController;
class SystemLog;
struct BridgeMessage;

// What the page says about the user's account: signing in, signing out, synchronising. Main thread only; a token is
// never logged.
class AccountMessages {
public:
    AccountMessages(DaemonClient& daemonClient, const RemovalShellController& removal,
        HabitReminderPresenter& reminders, SystemLog& log);

    void addTokenAndLogout(BridgeTable& table);
    void addForceSync(BridgeTable& table);

private:
    void forwardToken(const BridgeMessage& message);
    void tokenAnswered(
        const std::string& token, std::int64_t sequenceBefore, const std::expected<void, DaemonFailure>& answer);
    void forceSync();

    DaemonClient& m_daemonClient;
    const RemovalShellController& m_removal;
    HabitReminderPresenter& m_reminders;
    SystemLog& m_log;
    LifeToken m_life;
};

}
