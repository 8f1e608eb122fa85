#include "web/TrustedOrigins.h"

#include "base/Text.h"

#include <algorithm>

namespace brevanta {

namespace {

bool isHttpsWithHostAmong(std::string_view scheme, std::string_view host, const std::vector<std::string>& hosts)
{
    if (lowerCased(scheme) != "https")
        return false;
    if (host.ends_with('.'))
        host.remove_suffix(1);
    return !host.empty() && std::ranges::find(hosts, lowerCased(host)) != hosts.end();
}

}

TrustedOrigins::TrustedOrigins(std::vector<std::string> trustedHosts, std::vector<std::string> signInHosts)
    : m_trustedHosts(std::move(trustedHosts))
    , m_signInHosts(std::move(signInHosts))
{
}

bool TrustedOrigins::isBridgeTrusted(std::string_view scheme, std::string_view host) const
{
    return isHttpsWithHostAmong(scheme, host, m_trustedHosts);
}

bool TrustedOrigins::isNavigationAllowed(const Url& url) const
{
    return isBridgeTrusted(url) || isHttpsWithHostAmong(url.scheme, url.host, m_signInHosts);
}

}
