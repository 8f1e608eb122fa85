#include "setup/DeviceSetupLinkRouter.h"

#include <utility>

namespace brevanta {

DeviceSetupLinkRouter::DeviceSetupLinkRouter(std::function<double()> now, std::function<std::string()> makeToken)
    : m_now(std::move(now))
    , m_makeToken(std::move(makeToken))
{
}

void DeviceSetupLinkRouter::linkArrived() { m_inbox.put(m_makeToken(), m_now()); }

std::optional<std::string> DeviceSetupLinkRouter::take() { return m_inbox.take(m_now()); }

void DeviceSetupLinkRouter::acknowledge(const std::string& token) { m_inbox.acknowledge(token, m_now()); }

}
