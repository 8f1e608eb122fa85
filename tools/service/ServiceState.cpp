#include "service/ServiceState.h"

#include "service/JsonText.h"

#include <cmath>
#include <utility>

namespace brevanta::service {

static constexpr double leaseSeconds = 90;
// The lease is renewed in steps, so that replies of an idle service stay the same bytes in between.
static constexpr double leaseStepSeconds = 30;

ServiceState::ServiceState(ServiceIdentity identity)
    : m_identity(std::move(identity))
    , m_removal(m_identity.launch, m_identity.launchOrder)
    , m_notices(m_identity.launchOrder)
    , m_version(m_identity.version)
{
}

void ServiceState::advance(double now)
{
    m_now = now;
    m_coins.advance(now);
    if (!m_coins.isSpent())
        m_isSpentBalanceExcused = false;
    m_removal.advance(epoch());
    m_notices.advance(now);
}

void ServiceState::setEnergy(double energy)
{
    m_coins.setEnergy(energy);
    m_isSpentBalanceExcused = false;
}

void ServiceState::startTask(std::string title, double earnPerMinute)
{
    m_taskTitle = std::move(title);
    m_taskEarnPerMinute = earnPerMinute;
    m_coins.setEarnPerMinute(earnPerMinute);
}

void ServiceState::endTask()
{
    m_taskTitle.reset();
    m_coins.setEarnPerMinute(0);
}

void ServiceState::block(std::string reason) { m_orderedBlock = std::move(reason); }

void ServiceState::unblock()
{
    m_orderedBlock.reset();
    m_isSpentBalanceExcused = m_coins.isSpent();
}

void ServiceState::setListCount(std::string_view key, std::size_t count)
{
    m_lists.setCount(key, count);
    m_listsText.reset();
}

void ServiceState::trackApp(const std::string& bundleId, double budgetSeconds)
{
    m_trackSessions.push_back({
        { "bundle_id", bundleId },
        { "session_id", "session-" + std::to_string(++m_lastTrackSession) },
        { "budget_end_epoch", epoch() + budgetSeconds },
    });
}

void ServiceState::overrideKey(const std::string& key, nlohmann::json value)
{
    m_overrides[key] = std::move(value);
    m_hiddenKeys.erase(key);
    noteOverrideChange(key);
}

void ServiceState::unsetKey(const std::string& key)
{
    if (!m_overrides.erase(key))
        m_hiddenKeys.insert(key);
    noteOverrideChange(key);
}

void ServiceState::restoreKey(const std::string& key)
{
    m_overrides.erase(key);
    m_hiddenKeys.erase(key);
    noteOverrideChange(key);
}

void ServiceState::restoreAllKeys()
{
    m_overrides.clear();
    m_hiddenKeys.clear();
    m_listsText.reset();
}

void ServiceState::queueRemoval(const std::string& account) { m_removal.queue(account, credentialStanding(), epoch()); }

RemovalHandshake::CredentialStanding ServiceState::credentialStanding() const
{
    if (!m_credential.token())
        return RemovalHandshake::CredentialStanding::missing;
    if (m_credential.isInvalid())
        return RemovalHandshake::CredentialStanding::invalid;
    return RemovalHandshake::CredentialStanding::good;
}

std::optional<std::string> ServiceState::blockReason() const
{
    // A service that is on its way out has let go of everything.
    if (m_removal.state() == RemovalHandshake::State::finishing)
        return std::nullopt;
    if (m_orderedBlock)
        return m_orderedBlock;
    if (m_coins.isSpent() && !m_isSpentBalanceExcused)
        return "coins_depleted";
    return std::nullopt;
}

nlohmann::json ServiceState::ownValues() const
{
    const auto reason = blockReason();
    const double leaseStart = std::floor(m_now / leaseStepSeconds) * leaseStepSeconds;
    nlohmann::json values {
        { "should_block", reason.has_value() },
        { "energy", m_coins.energy() },
        { "api_base_url", "https://api.example.com" },
        { "notify_macos_low_lp", true },
        { "notify_macos_no_lp", true },
        { "notify_macos_high_lp", true },
        { "notify_macos_auto_track_start", true },
        { "notify_macos_auto_track_stop", true },
        { "notify_macos_app_blocked", true },
        { "low_lp_threshold", 10.0 },
        { "high_lp_threshold", 50.0 },
        { "has_device_token", m_credential.token().has_value() },
        { "auth_token_invalid", m_credential.isInvalid() },
        { "daemon_boot_id", m_identity.bootId },
        { "auto_track_sessions", m_trackSessions },
        { "removal", m_removal.record() },
        { "lease_boot_session_uuid", m_identity.leaseBootSession },
        { "lease_until_uptime_ns",
            m_identity.uptimeAtStartNs + static_cast<std::uint64_t>((leaseStart + leaseSeconds) * 1e9) },
    };
    if (reason)
        values["block_reason"] = *reason;
    if (m_taskTitle) {
        values["active_task_title"] = *m_taskTitle;
        values["active_task_earn_rate"] = m_taskEarnPerMinute;
    }
    if (m_credential.token())
        values["auth_token"] = *m_credential.token();
    if (m_version)
        values["daemon_version"] = *m_version;
    m_notices.writeTo(values);
    return values;
}

nlohmann::json ServiceState::shortValues() const
{
    auto values = ownValues();
    for (const auto& [key, value] : m_overrides) {
        if (!EntryLists::isListKey(key))
            values[key] = value;
    }
    for (const auto& key : m_hiddenKeys)
        values.erase(key);
    return values;
}

std::optional<std::string> ServiceState::listValue(const std::string& key) const
{
    if (m_hiddenKeys.contains(key))
        return std::nullopt;
    if (const auto found = m_overrides.find(key); found != m_overrides.end())
        return jsonText(found->second);
    return m_lists.textOf(key);
}

const std::string& ServiceState::listsText()
{
    if (m_listsText)
        return *m_listsText;
    std::string text;
    for (const auto name : EntryLists::keys) {
        const std::string key(name);
        if (const auto value = listValue(key))
            text += '"' + key + "\":" + *value + ',';
    }
    return m_listsText.emplace(std::move(text));
}

std::string ServiceState::statusReply(const std::optional<std::string>& filterAnswer)
{
    auto values = shortValues();
    const bool isFilterResultDecided
        = m_overrides.contains("filter_health_result") || m_hiddenKeys.contains("filter_health_result");
    if (filterAnswer && !isFilterResultDecided)
        values["filter_health_result"] = *filterAnswer;
    const auto rest = jsonText(values);
    const auto& lists = listsText();

    std::string reply;
    reply.reserve(1 + lists.size() + rest.size());
    reply = '{';
    reply += lists;
    if (values.empty() && !lists.empty())
        reply.pop_back();
    reply.append(rest, 1);
    return reply;
}

std::string ServiceState::minimalReply() const
{
    return jsonText({ { "should_block", blockReason().has_value() }, { "energy", m_coins.energy() } });
}

std::optional<std::string> ServiceState::replyValue(const std::string& key)
{
    if (EntryLists::isListKey(key))
        return listValue(key);
    const auto values = shortValues();
    const auto found = values.find(key);
    if (found == values.end())
        return std::nullopt;
    return jsonText(*found);
}

void ServiceState::noteOverrideChange(const std::string& key)
{
    if (EntryLists::isListKey(key))
        m_listsText.reset();
}

}
