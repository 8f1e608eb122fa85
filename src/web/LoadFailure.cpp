#include "web/LoadFailure.h"

#include "web/UrlError.h"

namespace brevanta {

namespace {

// WebKit's own domain, and its number for what the client's rules end: the page of WKError, and WebKitGTK's of
// WebKitPolicyError.
constexpr std::string_view webKitDomain = "WebKitErrorDomain";
constexpr std::int64_t interruptedByPolicy = 102;

std::string_view plainWords(UrlError code)
{
    switch (code) {
    case UrlError::notConnectedToInternet:
    case UrlError::internationalRoamingOff:
    case UrlError::dataNotAllowed:
        return "this computer is offline";
    case UrlError::cannotFindHost:
    case UrlError::dnsLookupFailed:
        return "no server is found under this name";
    case UrlError::cannotConnectToHost:
        return "the server cannot be connected to";
    case UrlError::networkConnectionLost:
        return "the connection to the server was lost";
    case UrlError::timedOut:
        return "the server has not answered in time";
    case UrlError::badServerResponse:
        return "the server answered with an error";
    case UrlError::cannotParseResponse:
        return "the server's answer cannot be read";
    case UrlError::tooManyRedirects:
        return "the server redirects without an end";
    case UrlError::serverCertificateHasBadDate:
    case UrlError::serverCertificateUntrusted:
    case UrlError::serverCertificateHasUnknownRoot:
    case UrlError::serverCertificateNotYetValid:
        return "the server's certificate is not valid or not trusted";
    case UrlError::clientCertificateRejected:
    case UrlError::clientCertificateRequired:
        return "the server asks for a certificate that this client does not have";
    case UrlError::secureConnectionFailed:
        return "no secure connection to the server could be made";
    case UrlError::badUrl:
    case UrlError::unsupportedUrl:
    case UrlError::appTransportSecurityRequiresSecureConnection:
        return "the address is none that can be loaded";
    case UrlError::unknown:
    case UrlError::cancelled:
        break;
    }
    return "the page could not be loaded";
}

}

std::string_view plainWords(const WebError& error)
{
    if (error.domain == webError(UrlError::unknown).domain)
        return plainWords(static_cast<UrlError>(error.code));
    if (error.domain == "ShellLoadCoordinator")
        return {};
    if (error.domain == webKitDomain && error.code == interruptedByPolicy)
        return "what is at this address is not shown in this window";
    return plainWords(UrlError::unknown);
}

}
