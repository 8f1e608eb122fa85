#include "crash/CrashEndpoint.h"

#include "base/Text.h"
#include "platform/Url.h"

#include <algorithm>

namespace brevanta {

namespace {

constexpr std::size_t longestEnvironment = 64;

bool isEnvironmentCharacter(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte > ' ' && byte != 0x7F && c != '/' && c != '\\';
}

}

std::string_view describe(CrashEndpointError error)
{
    switch (error) {
    case CrashEndpointError::noUrl:
        return "it is no URL";
    case CrashEndpointError::notHttps:
        return "it is no https URL";
    case CrashEndpointError::noHost:
        return "it names no host";
    case CrashEndpointError::noPublicKey:
        return "it has no public key";
    case CrashEndpointError::secretKey:
        return "it carries a secret key";
    case CrashEndpointError::noProject:
        return "it names no project";
    case CrashEndpointError::furtherParts:
        return "it has a query or a fragment";
    }
    return "it cannot be used";
}

std::expected<std::string, CrashEndpointError> crashEndpointHost(const std::optional<Url>& url)
{
    if (!url)
        return std::unexpected(CrashEndpointError::noUrl);
    if (lowerCased(url->scheme) != "https")
        return std::unexpected(CrashEndpointError::notHttps);
    if (url->host.empty())
        return std::unexpected(CrashEndpointError::noHost);
    if (url->user.value_or("").empty())
        return std::unexpected(CrashEndpointError::noPublicKey);
    if (url->password)
        return std::unexpected(CrashEndpointError::secretKey);
    if (url->text.find_first_of("?#") != std::string::npos)
        return std::unexpected(CrashEndpointError::furtherParts);
    if (url->path.empty() || url->path.ends_with('/'))
        return std::unexpected(CrashEndpointError::noProject);
    return url->host;
}

std::string crashEnvironment(std::string_view wanted, std::string_view usual)
{
    const bool isName = !wanted.empty() && wanted.size() <= longestEnvironment && wanted != "None"
        && std::ranges::all_of(wanted, isEnvironmentCharacter);
    return std::string(isName ? wanted : usual);
}

}
