#pragma once

#include "platform/WebView.h"

namespace brevanta {

// NSURLErrorDomain's codes, as Foundation's NSURLError.h numbers them.
enum class UrlError : int {
    unknown = -1,
    cancelled = -999,
    badUrl = -1000,
    timedOut = -1001,
    unsupportedUrl = -1002,
    cannotFindHost = -1003,
    cannotConnectToHost = -1004,
    networkConnectionLost = -1005,
    dnsLookupFailed = -1006,
    tooManyRedirects = -1007,
    notConnectedToInternet = -1009,
    badServerResponse = -1011,
    cannotParseResponse = -1017,
    internationalRoamingOff = -1018,
    dataNotAllowed = -1020,
    appTransportSecurityRequiresSecureConnection = -1022,
    secureConnectionFailed = -1200,
    serverCertificateHasBadDate = -1201,
    serverCertificateUntrusted = -1202,
    serverCertificateHasUnknownRoot = -1203,
    serverCertificateNotYetValid = -1204,
    clientCertificateRejected = -1205,
    clientCertificateRequired = -1206,
};

[[nodiscard]] inline WebError webError(UrlError code) { return { "NSURLErrorDomain", static_cast<int>(code) }; }
[[nodiscard]] inline WebError cancelledError() { return webError(UrlError::cancelled); }

}
