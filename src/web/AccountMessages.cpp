#include "web/AccountMessages.h"

#include "base/Text.h"
#include "daemon/DaemonClient.h"
#include "install/RemovalShellController.h"
#include "platform/SystemLog.h"
#include "platform/UserDefaults.h"
#include "web/BridgeTable.h"

#include <limits>

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

AccountMessages::AccountMessages(
    DaemonClient& daemonClient, const RemovalShellController& removal, UserDefaults& defaults, SystemLog& log)
    : m_daemonClient(daemonClient)
    , m_removal(removal)
    , m_defaults(defaults)
    , m_log(log)
{
}

void AccountMessages::addTokenAndLogout(BridgeTable& table)
{
    table.add("auth_token", [this](const auto& message) { forwardToken(message); });
    table.add("logout", [this](const auto&) { recordLogout(); });
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
    m_daemonClient.setAuthToken(
        *token, deviceId, m_life.guard([this, token = *token, sequence = logoutSequence()](const auto& answer) {
            tokenAnswered(token, sequence, answer);
        }));
}

void AccountMessages::tokenAnswered(
    const std::string& token, std::int64_t sequenceBefore, const std::expected<void, DaemonFailure>& answer)
{
    if (!answer)
        return m_log.log(
            "[KestreluneMac] auth_token bridge: daemon rejected: " + without(token, describe(answer.error())));
    m_log.log("[KestreluneMac] auth_token bridge: daemon accepted token");
    if (logoutSequence() != sequenceBefore)
        m_log.log("[KestreluneMac] auth_token bridge: accept landed after a logout; habit reminders stay suppressed");
}

void AccountMessages::recordLogout()
{
    const auto sequence = logoutSequence();
    // Only a difference counts, so the sequence may begin anew.
    const bool isLast = sequence == std::numeric_limits<std::int64_t>::max();
    m_defaults.set(logoutSequenceKey, isLast ? std::int64_t { 1 } : sequence + 1);
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

std::int64_t AccountMessages::logoutSequence() const
{
    const auto stored = m_defaults.get(logoutSequenceKey);
    const auto* const number = stored ? std::get_if<std::int64_t>(&*stored) : nullptr;
    return number ? *number : 0;
}

}
