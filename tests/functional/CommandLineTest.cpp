#include "ClientTest.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace brevanta::functional {

static constexpr Milliseconds patience { 10000 };

struct Surroundings {
    std::string busAddress;
    std::string display;
};

// A client without a service, and without a bus and a display unless they are given.
static std::unique_ptr<BrevantaClient> startAlone(
    const std::vector<std::string>& arguments, const Surroundings& surroundings = {})
{
    auto client = std::make_unique<BrevantaClient>(BrevantaClientOptions {
        .executable = clientExecutable(),
        .busAddress = surroundings.busAddress,
        .display = surroundings.display,
        .socketPath = "/nonexistent/service.sock",
        .arguments = arguments,
    });
    const auto started = client->start();
    EXPECT_TRUE(started) << started.error();
    return started ? std::move(client) : nullptr;
}

TEST(CommandLineTest, helpIsShownWithoutADisplay)
{
    const auto client = startAlone({ "--help" });
    ASSERT_TRUE(client);
    EXPECT_EQ(client->process().awaitExit(patience), 0);
    const auto& output = client->process().output();
    EXPECT_TRUE(output.contains("Usage")) << output.text();
    EXPECT_TRUE(output.contains("--version")) << output.text();
    EXPECT_EQ(client->log(), "");
}

TEST(CommandLineTest, theVersionIsShownWithoutADisplay)
{
    const auto client = startAlone({ "--version" });
    ASSERT_TRUE(client);
    EXPECT_EQ(client->process().awaitExit(patience), 0);
    EXPECT_EQ(client->process().output().text(), "Brevanta 0.121.0\n");
    EXPECT_EQ(client->log(), "");
}

static void expectOneLineAbout(const std::string& word, const std::string& log)
{
    EXPECT_EQ(std::ranges::count(log, '\n'), 1) << log;
    EXPECT_TRUE(log.starts_with("Brevanta: ")) << log;
    EXPECT_NE(log.find(word), std::string::npos) << log;
}

TEST(CommandLineTest, withoutADisplayTheClientSaysSoInOneLine)
{
    const auto bus = PrivateBus::start();
    ASSERT_TRUE(bus) << bus.error();
    const auto client = startAlone({}, { .busAddress = (*bus)->address() });
    ASSERT_TRUE(client);
    EXPECT_EQ(client->process().awaitExit(patience), 1);
    expectOneLineAbout("display", client->log());
}

TEST(CommandLineTest, withNeitherDisplayNorBusTheDisplayIsNamed)
{
    const auto client = startAlone({});
    ASSERT_TRUE(client);
    EXPECT_EQ(client->process().awaitExit(patience), 1);
    expectOneLineAbout("display", client->log());
}

TEST(CommandLineTest, withoutABusTheClientSaysSoInOneLine)
{
    const auto display = VirtualDisplay::start();
    ASSERT_TRUE(display) << display.error();
    const auto client = startAlone({}, { .display = (*display)->name() });
    ASSERT_TRUE(client);
    EXPECT_EQ(client->process().awaitExit(patience), 1);
    expectOneLineAbout("bus", client->log());
}

TEST(CommandLineTest, anUnknownArgumentIsRefusedInOneLine)
{
    const auto client = startAlone({ "--no-such-thing" });
    ASSERT_TRUE(client);
    EXPECT_EQ(client->process().awaitExit(patience), 2);
    expectOneLineAbout("--no-such-thing", client->log());
}

TEST(ProductionBinaryTest, aProductionBuildDoesNotEvenNameTheDevelopmentOverrides)
{
    const auto contentsOf = [](const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        EXPECT_TRUE(file) << path;
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    const auto development = contentsOf(clientExecutable());
    const auto production = contentsOf(prodClientExecutable());
    ASSERT_FALSE(production.empty());
    for (const auto* name : { "BREVANTA_ROOT", "BREVANTA_SOCKET" })
        EXPECT_NE(development.find(name), std::string::npos) << name;
    EXPECT_EQ(production.find("BREVANTA_"), std::string::npos) << production.substr(production.find("BREVANTA_"), 40);
}

}
