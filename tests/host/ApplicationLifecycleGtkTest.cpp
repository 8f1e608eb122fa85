#include "support/ChildProcess.h"
#include "support/PrivateBus.h"

#include <csignal>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

using functional::ChildProcess;
using functional::Milliseconds;
using functional::PrivateBus;

constexpr Milliseconds patience { 20000 };
constexpr auto probeName = "com.brevanta.LifecycleProbe";
constexpr auto probePath = "/com/brevanta/LifecycleProbe";

// The lifecycle in processes of its own, on a session bus of its own, which is its system bus too.
class ApplicationLifecycleGtkTest : public testing::Test {
protected:
    void SetUp() override
    {
        auto bus = PrivateBus::start();
        ASSERT_TRUE(bus) << bus.error();
        m_bus = std::move(*bus);
    }

    [[nodiscard]] std::unique_ptr<ChildProcess> start(
        const std::vector<std::string>& links = {}, const std::vector<std::string>& moreEnvironment = {}) const
    {
        auto environment = functional::neutralEnvironment();
        environment.push_back("DBUS_SESSION_BUS_ADDRESS=" + m_bus->address());
        environment.push_back("DBUS_SYSTEM_BUS_ADDRESS=" + m_bus->address());
        environment.push_back(std::string("DISPLAY=") + g_getenv("DISPLAY"));
        environment.emplace_back("NO_AT_BRIDGE=1");
        environment.emplace_back("GSETTINGS_BACKEND=memory");
        environment.insert(environment.end(), moreEnvironment.begin(), moreEnvironment.end());
        std::vector<std::string> arguments { LIFECYCLE_PROBE };
        arguments.insert(arguments.end(), links.begin(), links.end());
        auto process
            = ChildProcess::start({ .arguments = std::move(arguments), .environment = std::move(environment) });
        EXPECT_TRUE(process) << process.error();
        return process ? std::move(*process) : nullptr;
    }

    // One that has finished launching.
    [[nodiscard]] std::unique_ptr<ChildProcess> startFirst(
        const std::vector<std::string>& links = {}, const std::vector<std::string>& moreEnvironment = {}) const
    {
        auto process = start(links, moreEnvironment);
        EXPECT_TRUE(process && process->output().awaitText("did-finish-launching\n", patience)) << "no launch";
        return process;
    }

    [[nodiscard]] static std::string wholeLife(ChildProcess& process)
    {
        process.signal(SIGTERM);
        EXPECT_EQ(process.awaitExit(patience), 0) << process.errors().text();
        return process.output().text();
    }

    void openOverTheBus(const std::vector<const char*>& uris) const
    {
        GVariantBuilder data;
        g_variant_builder_init(&data, G_VARIANT_TYPE_VARDICT);
        const auto reply = m_bus->call(probeName, probePath, "org.freedesktop.Application", "Open",
            g_variant_new("(@asa{sv})", g_variant_new_strv(uris.data(), static_cast<gssize>(uris.size())), &data));
        EXPECT_TRUE(reply) << reply.error();
    }

    std::unique_ptr<PrivateBus> m_bus;
};

constexpr auto launchWithoutLink = "will-finish-launching\ndid-finish-launching\n";
constexpr auto ending = "should-terminate\nwill-terminate\n";

}

TEST_F(ApplicationLifecycleGtkTest, LaunchesOnceAndEndsOnASignal)
{
    const auto process = startFirst();
    ASSERT_TRUE(process);
    EXPECT_EQ(wholeLife(*process), std::string(launchWithoutLink) + ending);
    EXPECT_EQ(process->errors().text(), "");
}

TEST_F(ApplicationLifecycleGtkTest, LinksThatStartedTheApplicationComeBetweenTheTwoAnnouncementsAsTheyWereWritten)
{
    const std::vector<std::string> links { "brevanta://Open/Device-Setup/?Token=aB%2fC&x=1#F", "BREVANTA:a/../b",
        "brevanta://[::1", "brevanta:Grüße" };
    const auto process = startFirst(links);
    ASSERT_TRUE(process);
    EXPECT_EQ(wholeLife(*process),
        std::string("will-finish-launching\nopen brevanta://Open/Device-Setup/?Token=aB%2fC&x=1#F\n"
                    "open BREVANTA:a/../b\nopen brevanta:Grüße\ndid-finish-launching\n")
            + ending);
}

TEST_F(ApplicationLifecycleGtkTest, ALinkThatIsNoUrlStartsTheApplicationAllTheSame)
{
    const auto process = startFirst({ "brevanta://[::1" });
    ASSERT_TRUE(process);
    EXPECT_EQ(wholeLife(*process), std::string(launchWithoutLink) + ending);
}

TEST_F(ApplicationLifecycleGtkTest, AFurtherStartHandsItsLinksToTheFirstAndEnds)
{
    const auto first = startFirst();
    ASSERT_TRUE(first);
    const auto withLinks = start({ "brevanta://open/?Q=Ä%20b", "brevanta:two" });
    ASSERT_TRUE(withLinks);
    EXPECT_EQ(withLinks->awaitExit(patience), 0) << withLinks->errors().text();
    ASSERT_TRUE(first->output().awaitText("open brevanta:two\n", patience));
    const auto withBadLink = start({ "brevanta://\xFF" });
    ASSERT_TRUE(withBadLink);
    EXPECT_EQ(withBadLink->awaitExit(patience), 0) << withBadLink->errors().text();
    ASSERT_TRUE(first->output().awaitText("reopen\n", patience));
    EXPECT_EQ(withLinks->output().text() + withBadLink->output().text(), "");
    EXPECT_EQ(withLinks->errors().text() + withBadLink->errors().text(), "");
    EXPECT_EQ(wholeLife(*first),
        std::string(launchWithoutLink) + "open brevanta://open/?Q=Ä%20b\nopen brevanta:two\nreopen\n" + ending);
}

TEST_F(ApplicationLifecycleGtkTest, TheBusMayOpenLinksOfTheOwnSchemeOnly)
{
    const auto process = startFirst();
    ASSERT_TRUE(process);
    openOverTheBus({ "file:///etc/passwd", "https://example.com/brevanta:", "brevanta://[::1", "", "brevanta" });
    openOverTheBus({});
    openOverTheBus({ "https://example.com/", "brevanta:mine" });
    ASSERT_TRUE(process->output().awaitText("open brevanta:mine\n", patience));
    EXPECT_EQ(wholeLife(*process), std::string(launchWithoutLink) + "open brevanta:mine\n" + ending);
}

TEST_F(ApplicationLifecycleGtkTest, AWakeOfTheMachineIsTold)
{
    const auto process = startFirst();
    ASSERT_TRUE(process);
    const auto taken = m_bus->call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", "org.freedesktop.login1", 0U));
    ASSERT_TRUE(taken) << taken.error();
    // Nothing tells when the process has begun to hear.
    EXPECT_TRUE(functional::awaitByAsking(
        [&] {
            g_dbus_connection_emit_signal(m_bus->connection(), nullptr, "/org/freedesktop/login1",
                "org.freedesktop.login1.Manager", "PrepareForSleep", g_variant_new("(b)", FALSE), nullptr);
            return process->output().contains("wake\n");
        },
        patience));
}

TEST_F(ApplicationLifecycleGtkTest, AWindowThatComesToTheFrontMakesTheApplicationActive)
{
    const auto process = startFirst({}, { "LIFECYCLE_PROBE_WINDOW=1" });
    ASSERT_TRUE(process);
    // Without a window manager a window takes the keyboard only when it is on the screen already.
    EXPECT_TRUE(functional::awaitByAsking(
        [&] {
            const auto reopened = m_bus->call(
                probeName, probePath, "org.freedesktop.Application", "Activate", g_variant_new("(a{sv})", nullptr));
            EXPECT_TRUE(reopened) << reopened.error();
            return process->output().contains("active\n");
        },
        patience));
}

}
