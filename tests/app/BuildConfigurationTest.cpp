#include "app/BuildConfiguration.h"

#include <gtest/gtest.h>
#include <map>

// Compiled twice, against each flavour; EXPECTED_FLAVOUR says which.

namespace brevanta {

namespace {

BuildConfiguration configurationWith(const std::map<std::string, std::string>& environment)
{
    const auto read = [&](const char* name) {
        const auto found = environment.find(name);
        return found == environment.end() ? std::nullopt : std::optional(found->second);
    };
    return buildConfiguration(read, "/some/root/Applications/Brevanta.app/Contents/MacOS/Brevanta");
}

const std::map<std::string, std::string> everything { { "BREVANTA_ROOT", "/r" }, { "BREVANTA_SOCKET", "/s" },
    { "BREVANTA_APP_URL", "https://localhost:8443/" }, { "BREVANTA_TRUSTED_HOSTS", "LocalHost, ,other.example" },
    { "BREVANTA_SIGN_IN_HOSTS", "signin.example" }, { "BREVANTA_TLS_CERT", "/c.pem" } };

}

#if EXPECTED_FLAVOUR_IS_DEV

TEST(DevBuildConfiguration, TheRootIsTheFolderAroundTheBundle)
{
    const auto configuration = configurationWith({});
    EXPECT_EQ(configuration.flavour, Flavour::dev);
    EXPECT_EQ(configuration.root, "/some/root");
    EXPECT_EQ(configuration.socketPath, "/some/root/var/run/com.brevanta.daemon.sock");
    EXPECT_FALSE(configuration.extraCertificate);
}

TEST(DevBuildConfiguration, EachVariableOverridesItsValueAndAnEmptyOneDoesNot)
{
    const auto configuration = configurationWith(everything);
    EXPECT_EQ(configuration.root, "/r");
    EXPECT_EQ(configuration.socketPath, "/s");
    EXPECT_EQ(configuration.appUrl, "https://localhost:8443/");
    EXPECT_EQ(configuration.trustedHosts, (std::vector<std::string> { "localhost", "other.example" }));
    EXPECT_EQ(configuration.signInHosts, std::vector<std::string> { "signin.example" });
    EXPECT_EQ(configuration.extraCertificate, "/c.pem");
    EXPECT_EQ(configurationWith({ { "BREVANTA_ROOT", "/r" } }).socketPath, "/r/var/run/com.brevanta.daemon.sock");
    EXPECT_EQ(configurationWith({ { "BREVANTA_APP_URL", "" } }).appUrl, configurationWith({}).appUrl);
}

#else

TEST(ProdBuildConfiguration, NothingInTheEnvironmentMatters)
{
    const auto configuration = configurationWith(everything);
    const auto plain = configurationWith({});
    EXPECT_EQ(configuration.flavour, Flavour::prod);
    EXPECT_EQ(configuration.root, "/");
    EXPECT_EQ(configuration.socketPath, "/var/run/com.brevanta.daemon.sock");
    EXPECT_EQ(configuration.appUrl, plain.appUrl);
    EXPECT_EQ(configuration.trustedHosts, plain.trustedHosts);
    EXPECT_EQ(configuration.signInHosts, plain.signInHosts);
    EXPECT_FALSE(configuration.extraCertificate);
}

#endif

}
