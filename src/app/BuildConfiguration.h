#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

enum class Flavour { dev, prod };

// What is settled when the client is built, and in the dev flavour may be overridden from the environment.
struct BuildConfiguration {
    Flavour flavour { Flavour::prod };
    std::string version; // "0.121.0"
    std::string bundleIdentifier;
    std::filesystem::path root; // Stands for "/" in every system and user path; "/" itself in the prod flavour.
    std::string socketPath; // Where the blocking service listens.
    std::string appUrl; // The web application.
    std::vector<std::string> trustedHosts; // Hosts whose pages may use the bridge, lower case.
    std::vector<std::string> signInHosts; // Hosts that may be navigated to for signing in, lower case.
    std::string extensionStoreUrl; // The browser extension's page in its store.
    std::string crashEndpoint {}; // Where crash reports go, as the bundle states it; empty for nowhere.
    std::optional<std::filesystem::path> extraCertificate; // PEM, accepted for the app URL's host; dev flavour only.
};

// Looks up one environment variable.
using EnvironmentReader = std::function<std::optional<std::string>(const char* name)>;

// The configuration of this build. `executable` is the absolute path of the running program: in the dev flavour the
// development root is the folder that holds its Applications/Brevanta.app/Contents/MacOS, unless overridden. In the
// prod flavour neither argument is looked at. An empty override counts as unset.
[[nodiscard]] BuildConfiguration buildConfiguration(
    const EnvironmentReader& environment, const std::filesystem::path& executable);

}
