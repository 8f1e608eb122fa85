#include "gtk/WebErrorMapping.h"

#include "gtk/GObjectPtr.h"

#include <gtest/gtest.h>
#include <webkit2/webkit2.h>

namespace brevanta {

namespace {

constexpr auto urlDomain = "NSURLErrorDomain";
constexpr auto webKitDomain = "WebKitErrorDomain";

constexpr NetworkFacts online { .isNetworkAvailable = true, .isLoopback = false };
constexpr NetworkFacts offline { .isNetworkAvailable = false, .isLoopback = false };
constexpr NetworkFacts offlineLoopback { .isNetworkAvailable = false, .isLoopback = true };

}

TEST(WebErrorMappingTest, EachErrorOfTheEngineHasOneOfFoundations)
{
    struct {
        GQuark domain;
        int code;
        NetworkFacts facts;
        WebError error;
    } const cases[] = {
        { G_IO_ERROR, G_IO_ERROR_CONNECTION_REFUSED, online, { urlDomain, -1004 } },
        { G_IO_ERROR, G_IO_ERROR_CONNECTION_REFUSED, offlineLoopback, { urlDomain, -1004 } },
        { G_IO_ERROR, G_IO_ERROR_HOST_UNREACHABLE, online, { urlDomain, -1004 } },
        { G_IO_ERROR, G_IO_ERROR_HOST_UNREACHABLE, offline, { urlDomain, -1009 } },
        { G_IO_ERROR, G_IO_ERROR_NETWORK_UNREACHABLE, online, { urlDomain, -1009 } },
        { G_IO_ERROR, G_IO_ERROR_CONNECTION_CLOSED, online, { urlDomain, -1005 } },
        { G_IO_ERROR, G_IO_ERROR_PARTIAL_INPUT, online, { urlDomain, -1005 } },
        { G_IO_ERROR, G_IO_ERROR_CANCELLED, online, { urlDomain, -1005 } },
        { G_IO_ERROR, G_IO_ERROR_TIMED_OUT, online, { urlDomain, -1001 } },
        { G_IO_ERROR, G_IO_ERROR_FAILED, online, { urlDomain, -1 } },
        { G_RESOLVER_ERROR, G_RESOLVER_ERROR_NOT_FOUND, online, { urlDomain, -1003 } },
        { G_RESOLVER_ERROR, G_RESOLVER_ERROR_NOT_FOUND, offline, { urlDomain, -1009 } },
        { G_RESOLVER_ERROR, G_RESOLVER_ERROR_NOT_FOUND, offlineLoopback, { urlDomain, -1003 } },
        { G_RESOLVER_ERROR, G_RESOLVER_ERROR_TEMPORARY_FAILURE, online, { urlDomain, -1006 } },
        { G_RESOLVER_ERROR, G_RESOLVER_ERROR_TEMPORARY_FAILURE, offline, { urlDomain, -1009 } },
        { G_TLS_ERROR, G_TLS_ERROR_BAD_CERTIFICATE, online, { urlDomain, -1202 } },
        { G_TLS_ERROR, G_TLS_ERROR_HANDSHAKE, online, { urlDomain, -1200 } },
        { SOUP_SESSION_ERROR, SOUP_SESSION_ERROR_PARSING, online, { urlDomain, -1017 } },
        { SOUP_SESSION_ERROR, SOUP_SESSION_ERROR_TOO_MANY_REDIRECTS, online, { urlDomain, -1007 } },
        { g_quark_from_string(""), 0, online, { urlDomain, -1007 } },
        { WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED, online, { urlDomain, -999 } },
        { WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_UNKNOWN_PROTOCOL, online, { urlDomain, -1002 } },
        { WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_FAILED, online, { urlDomain, -1 } },
        { g_quark_from_string("WebKitErrorDomain"), 300, online, { urlDomain, -1005 } },
        { WEBKIT_POLICY_ERROR, 101, online, { webKitDomain, 101 } },
        { WEBKIT_POLICY_ERROR, 102, online, { webKitDomain, 102 } },
        { g_quark_from_string("of-nobody"), 0, offline, { urlDomain, -1 } },
    };
    for (const auto& [domain, code, facts, error] : cases) {
        const GLibPtr<GError> engineError(g_error_new_literal(domain, code, "message"));
        EXPECT_EQ(webErrorOf(*engineError, facts), error) << g_quark_to_string(domain) << ' ' << code;
    }
}

TEST(WebErrorMappingTest, KnowsWhatIsThisComputer)
{
    for (const auto* const host :
        { "localhost", "LOCALHOST", "app.localhost", "127.0.0.1", "127.1.2.3", "::1", "[::1]" })
        EXPECT_TRUE(isLoopbackHost(host)) << host;
    for (const auto* const host :
        { "", "localhost.example", "notlocalhost", "128.0.0.1", "127.0.0.1.example", "::2", "[" })
        EXPECT_FALSE(isLoopbackHost(host)) << host;
}

}
