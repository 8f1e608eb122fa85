#include "web/TrustedOrigins.h"

#include <gtest/gtest.h>

namespace brevanta {

TEST(TrustedOrigins, OnlyHttpsPagesOfTheServicesHostsAreTrusted)
{
    const TrustedOrigins origins({ "service.example", "www.service.example" }, { "signin.example" });
    struct Case {
        const char* scheme;
        const char* host;
        bool trusted;
        bool allowed;
    };
    for (const auto& [scheme, host, trusted, allowed] : {
             Case { "https", "service.example", true, true },
             Case { "HTTPS", "WWW.Service.Example", true, true },
             Case { "https", "service.example.", true, true },
             Case { "https", "service.example..", false, false },
             Case { "http", "service.example", false, false },
             Case { "wss", "service.example", false, false },
             Case { "", "service.example", false, false },
             Case { "https", "", false, false },
             Case { "https", ".", false, false },
             Case { "https", "evil-service.example", false, false },
             Case { "https", "service.example.evil.example", false, false },
             Case { "https", "sub.service.example", false, false },
             Case { "https", "signin.example", false, true },
             Case { "https", "SIGNIN.example.", false, true },
             Case { "http", "signin.example", false, false },
         }) {
        EXPECT_EQ(origins.isBridgeTrusted(scheme, host), trusted) << scheme << "://" << host;
        const Url url { .text = {}, .scheme = scheme, .user = "somebody", .host = host, .port = 8443, .path = "/x" };
        EXPECT_EQ(origins.isBridgeTrusted(url), trusted) << scheme << "://" << host;
        EXPECT_EQ(origins.isNavigationAllowed(url), allowed) << scheme << "://" << host;
    }
}

}
