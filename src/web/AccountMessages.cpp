#include "web/AccountMessages.h"

#include "base/Text.h"
#include "daemon/DaemonClient.h"
#include "install/RemovalShellController.h"
#include "notify/HabitReminderPresenter.h"
#include "platform/SystemLog.h"
#include "web/BridgeTable.h"

namespace brevanta {

namespace {

// A service may quote what it rejects.
std::string without(const std::string& secret, std::string text)
{
    for (auto at = secret.empty() ? std::string::npos : text.find(secret); at != std::string::npos;
        at = text.find(secret, at))
        text.replace(at, secret.size(), "…");
    return text;
}

}

AccountMessages::AccountMessages(DaemonClient& daemonClient, const RemovalShellController& removal,
    HabitReminderPresenter& reminders, SystemLog& log)
    : m_daemonClient(daemonClient)
    , m_removal(removal)
    , m_reminders(reminders)
    , m_log(log)
{
}

void AccountMessages::addTokenAndLogout(BridgeTable& table)
{
    table.add("auth_token", [this](const auto& message) { forwardToken(message); });
    table.add("logout", [this](const auto&) { m_reminders.signedOut(SignedOut::yes); });
}

void AccountMessages::addForceSync(BridgeTable& table)
{
    table.add("force_sync", [this](const auto&) { forceSync(); });
}

void AccountMessages::forwardToken(const BridgeMessage& message)
{
    const auto token = message.text("token");
    if (!token)
        return m_log.log("[KestreluneMac] auth_token bridge: missing token field");
    if (m_removal.shell().isFinishing())
        return m_log.log("[KestreluneMac] auth_token bridge: removal finishing, token not forwarded");
    const auto deviceId = message.text("device_id").value_or("");
    m_log.log("[KestreluneMac] auth_token bridge: forwarding (len=" + std::to_string(codePointCount(*token))
        + ", deviceBound=" + (deviceId.empty() ? "false" : "true") + ") to daemon");
    m_daemonClient.setAuthToken(*token, deviceId,
        m_life.guard([this, token = *token, sequence = m_reminders.logoutSequence()](
                         const auto& answer) { tokenAnswered(token, sequence, answer); }));
}

void AccountMessages::tokenAnswered(
    const std::string& token, std::int64_t sequenceBefore, const std::expected<void, DaemonFailure>& answer)
{
    if (!answer)
        return m_log.log("[KestreluneMac] auth_token bridge: daemon rejected: "
            + clipped(without(token, describe(answer.error())), maxLoggedBytes));
    m_log.log("[KestreluneMac] auth_token bridge: daemon accepted token");
    if (!m_reminders.tokenAccepted(token, sequenceBefore))
        m_log.log("[KestreluneMac] auth_token bridge: accept landed after a logout; habit reminders stay suppressed");
}

void AccountMessages::forceSync()
{
    m_daemonClient.forceSync(m_life.guard([this](const auto& answer) {
        if (answer)
            m_log.log("[KestreluneMac] force_sync bridge: daemon accepted");
        else
            m_log.log("[KestreluneMac] force_sync bridge: failed: " + describe(answer.error()));
    }));
}

}
