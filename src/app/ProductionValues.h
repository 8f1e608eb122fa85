#pragma once

#include "app/BuildConfiguration.h"

namespace brevanta {

// What both flavours start from; the prod flavour is just this. BREVANTA_VERSION comes from the build.
inline BuildConfiguration productionValues()
{
    return {
        .flavour = Flavour::prod,
        .version = BREVANTA_VERSION,
        .bundleIdentifier = "com.brevanta.KestreluneMac",
        .root = "/",
        .socketPath = "/var/run/com.brevanta.daemon.sock",
        .appUrl = "https://www.brevanta.com/",
        .trustedHosts = { "brevanta.com", "www.brevanta.com", "staging.brevanta.com" },
        .signInHosts = { "accounts.google.com", "appleid.apple.com" },
        .extensionStoreUrl = "https://www.brevanta.com/extension",
        .extraCertificate = std::nullopt,
    };
}

}
