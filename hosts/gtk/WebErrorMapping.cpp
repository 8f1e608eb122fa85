#include "gtk/WebErrorMapping.h"

#include "base/Text.h"
#include "gtk/GObjectPtr.h"

#include <webkit2/webkit2.h>

namespace brevanta {

namespace {

constexpr auto webKitErrorDomain = "WebKitErrorDomain";

// Without a network the resolver says that the host does not exist, and a route that the host cannot be reached.
UrlError unlessOffline(UrlError code, NetworkFacts facts)
{
    return facts.isNetworkAvailable || facts.isLoopback ? code : UrlError::notConnectedToInternet;
}

UrlError ofIo(int code, NetworkFacts facts)
{
    switch (code) {
    case G_IO_ERROR_CONNECTION_REFUSED:
        return UrlError::cannotConnectToHost;
    case G_IO_ERROR_HOST_UNREACHABLE:
        return unlessOffline(UrlError::cannotConnectToHost, facts);
    case G_IO_ERROR_NETWORK_UNREACHABLE:
        return facts.isLoopback ? UrlError::cannotConnectToHost : UrlError::notConnectedToInternet;
    case G_IO_ERROR_CONNECTION_CLOSED: // Of the same number as a broken pipe, which is what a reset looks like too.
    case G_IO_ERROR_NOT_CONNECTED:
    case G_IO_ERROR_PARTIAL_INPUT:
        return UrlError::networkConnectionLost;
    case G_IO_ERROR_TIMED_OUT:
        return UrlError::timedOut;
    case G_IO_ERROR_HOST_NOT_FOUND:
        return unlessOffline(UrlError::cannotFindHost, facts);
    case G_IO_ERROR_CANCELLED: // Of the network's own accord; what is cancelled here has an error of the engine's.
        return UrlError::networkConnectionLost;
    default:
        return UrlError::unknown;
    }
}

UrlError ofResolver(int code, NetworkFacts facts)
{
    switch (code) {
    case G_RESOLVER_ERROR_NOT_FOUND:
        return unlessOffline(UrlError::cannotFindHost, facts);
    case G_RESOLVER_ERROR_TEMPORARY_FAILURE:
        return unlessOffline(UrlError::dnsLookupFailed, facts);
    default:
        return UrlError::dnsLookupFailed;
    }
}

UrlError ofTls(int code)
{
    return code == G_TLS_ERROR_BAD_CERTIFICATE ? UrlError::serverCertificateUntrusted
                                               : UrlError::secureConnectionFailed;
}

UrlError ofNetwork(int code)
{
    switch (code) {
    case WEBKIT_NETWORK_ERROR_CANCELLED:
        return UrlError::cancelled;
    case WEBKIT_NETWORK_ERROR_UNKNOWN_PROTOCOL:
        return UrlError::unsupportedUrl;
    case WEBKIT_NETWORK_ERROR_TRANSPORT: // What is said when the network process has ended.
        return UrlError::networkConnectionLost;
    default:
        return UrlError::unknown;
    }
}

UrlError ofSoup(int code)
{
    switch (code) {
    case SOUP_SESSION_ERROR_PARSING:
    case SOUP_SESSION_ERROR_ENCODING:
        return UrlError::cannotParseResponse;
    case SOUP_SESSION_ERROR_TOO_MANY_REDIRECTS:
    case SOUP_SESSION_ERROR_TOO_MANY_RESTARTS:
        return UrlError::tooManyRedirects;
    default:
        return UrlError::badServerResponse;
    }
}

UrlError codeOf(const GError& error, NetworkFacts facts)
{
    if (error.domain == G_IO_ERROR)
        return ofIo(error.code, facts);
    if (error.domain == G_RESOLVER_ERROR)
        return ofResolver(error.code, facts);
    if (error.domain == G_TLS_ERROR)
        return ofTls(error.code);
    if (error.domain == SOUP_SESSION_ERROR)
        return ofSoup(error.code);
    const std::string domain(g_quark_to_string(error.domain));
    if (error.domain == WEBKIT_NETWORK_ERROR || domain == webKitErrorDomain)
        return ofNetwork(error.code);
    // How the engine gives up a circle of redirections.
    return domain.empty() && error.code == 0 ? UrlError::tooManyRedirects : UrlError::unknown;
}

}

WebError webErrorOf(const GError& error, NetworkFacts facts)
{
    // WebKitGTK's policy errors have the numbers of WebKitErrorDomain on the Mac.
    if (error.domain == WEBKIT_POLICY_ERROR)
        return { webKitErrorDomain, error.code };
    return webError(codeOf(error, facts));
}

bool isLoopbackHost(const std::string& host)
{
    const auto name = lowerCased(host);
    if (name == "localhost" || name.ends_with(".localhost"))
        return true;
    const auto isBracketed = name.starts_with('[') && name.ends_with(']');
    const GObjectPtr<GInetAddress> address(
        g_inet_address_new_from_string(isBracketed ? name.substr(1, name.size() - 2).c_str() : name.c_str()));
    return address && g_inet_address_get_is_loopback(address.get());
}

}
