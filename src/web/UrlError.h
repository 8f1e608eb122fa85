#pragma once

#include "platform/WebView.h"

namespace brevanta {

// NSURLErrorDomain's codes, as Foundation's NSURLError.h numbers them.
enum class UrlError : int {
    unknown = -1,
    cancelled = -999,
    unsupportedUrl = -1002,
    timedOut = -1001,
    cannotFindHost = -1003,
    cannotConnectToHost = -1004,
    networkConnectionLost = -1005,
    dnsLookupFailed = -1006,
    tooManyRedirects = -1007,
    notConnectedToInternet = -1009,
    badServerResponse = -1011,
    cannotParseResponse = -1017,
    secureConnectionFailed = -1200,
    serverCertificateUntrusted = -1202,
};

[[nodiscard]] inline WebError webError(UrlError code) { return { "NSURLErrorDomain", static_cast<int>(code) }; }
[[nodiscard]] inline WebError cancelledError() { return webError(UrlError::cancelled); }

}
