#pragma once

#include "platform/WebView.h"

#include <gio/gio.h>

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

[[nodiscard]] WebError webError(UrlError code);
[[nodiscard]] WebError cancelledError();

// What the network monitor says, and whether the URL's host is this computer itself.
struct NetworkFacts {
    bool isNetworkAvailable { true };
    bool isLoopback { false };
};

// The error of WebKitGTK's load-failed signal in Foundation's terms. An error that is not known is UrlError::unknown.
[[nodiscard]] WebError webErrorOf(const GError& error, NetworkFacts facts);

// Whether a host, as it stands in a URL, is this computer: localhost and what is below it (RFC 6761), 127.0.0.0/8, ::1.
[[nodiscard]] bool isLoopbackHost(const std::string& host);

}
