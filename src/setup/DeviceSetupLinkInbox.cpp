#include "setup/DeviceSetupLinkInbox.h"

#include <algorithm>

namespace brevanta {

namespace {

constexpr double longestWait = 120;
constexpr std::string_view uuidForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool isHexadecimalDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

}

bool isUuid(std::string_view text)
{
    return std::ranges::equal(
        text, uuidForm, [](char c, char form) { return form == '-' ? c == '-' : isHexadecimalDigit(c); });
}

void DeviceSetupLinkInbox::put(std::string token, double now) { m_pending = Pending { std::move(token), now }; }

std::optional<std::string> DeviceSetupLinkInbox::take(double now)
{
    forgetIfOld(now);
    return m_pending ? std::optional(m_pending->token) : std::nullopt;
}

void DeviceSetupLinkInbox::acknowledge(std::string_view token, double now)
{
    if (!isUuid(token))
        return;
    forgetIfOld(now);
    if (m_pending && m_pending->token == token)
        m_pending.reset();
}

void DeviceSetupLinkInbox::forgetIfOld(double now)
{
    if (m_pending && now - m_pending->arrivedAt > longestWait)
        m_pending.reset();
}

}
