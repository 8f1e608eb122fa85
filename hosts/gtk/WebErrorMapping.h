#pragma once

#include "web/UrlError.h"

#include <gio/gio.h>

namespace brevanta {

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
