#include "service/Credential.h"

#include <utility>

namespace brevanta::service {

void Credential::acceptAll() { m_policy = Policy::all; }

void Credential::rejectAll() { m_policy = Policy::none; }

void Credential::acceptOnly(std::string token)
{
    m_policy = Policy::one;
    m_onlyToken = std::move(token);
}

Credential::Verdict Credential::offer(const std::string& token)
{
    const bool isAccepted = m_policy == Policy::all || (m_policy == Policy::one && token == m_onlyToken);
    m_isInvalid = !isAccepted;
    if (!isAccepted)
        return Verdict::refused;
    m_token = token;
    return Verdict::accepted;
}

void Credential::forget()
{
    m_token.reset();
    m_isInvalid = false;
}

void Credential::restore()
{
    if (!m_token)
        m_token = "stand-in-token";
    m_isInvalid = false;
}

}
