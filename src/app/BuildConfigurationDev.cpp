#include "app/BuildConfiguration.h"
#include "app/ProductionValues.h"
#include "base/Text.h"

#include <algorithm>
#include <ranges>

namespace brevanta {

namespace {

// <root>/Applications/Brevanta.app/Contents/MacOS/Brevanta
std::filesystem::path developmentRoot(const std::filesystem::path& executable)
{
    return executable.parent_path().parent_path().parent_path().parent_path().parent_path();
}

std::optional<std::string> read(const EnvironmentReader& environment, const char* name)
{
    const auto value = environment(name);
    return value && !value->empty() ? value : std::nullopt;
}

// "One.example, two.example" names two hosts, in lower case; empty names are left out.
std::vector<std::string> hosts(const std::string& list)
{
    std::vector<std::string> names;
    for (const auto part : std::views::split(list, ',')) {
        std::string name;
        for (const char c : part) {
            if (c != ' ')
                name.push_back(c);
        }
        if (!name.empty())
            names.push_back(lowerCased(name));
    }
    return names;
}

}

BuildConfiguration buildConfiguration(const EnvironmentReader& environment, const std::filesystem::path& executable)
{
    auto configuration = productionValues();
    configuration.flavour = Flavour::dev;
    configuration.root = developmentRoot(executable);
    if (const auto root = read(environment, "BREVANTA_ROOT"))
        configuration.root = *root;
    configuration.socketPath = (configuration.root / "var/run/com.brevanta.daemon.sock").string();
    if (const auto socket = read(environment, "BREVANTA_SOCKET"))
        configuration.socketPath = *socket;
    if (const auto url = read(environment, "BREVANTA_APP_URL"))
        configuration.appUrl = *url;
    if (const auto trusted = read(environment, "BREVANTA_TRUSTED_HOSTS"))
        configuration.trustedHosts = hosts(*trusted);
    if (const auto signIn = read(environment, "BREVANTA_SIGN_IN_HOSTS"))
        configuration.signInHosts = hosts(*signIn);
    if (const auto certificate = read(environment, "BREVANTA_TLS_CERT"))
        configuration.extraCertificate = *certificate;
    return configuration;
}

}
