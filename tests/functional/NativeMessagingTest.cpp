#include "WebTest.h"

#include "support/Chromium.h"

#include <csignal>
#include <fstream>
#include <glib.h>

namespace brevanta::functional {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr std::string_view productExtension = "kdlmpaecbhnogfijaklmnbcdpeofghij";
// Follows from the "key" in its manifest: the first 128 bits of the key's SHA-256, in hexadecimal digits from a to p.
constexpr std::string_view testExtension = "jaiagcflbefdnfppeonongkagnnnhcja";

constexpr std::string_view serviceIsGone
    = R"(["message",{"autoTrackDomains":[],"blockReason":null,"blockedDomains":[],"daemonUnavailable":true,)"
      R"("endpoints":[],"meteredProxyPort":null,"shouldBlock":false,"stoppedDomains":[],"webConfigAvailable":false,)"
      R"("webMeteringOwner":null}])";

// A client that was started again after Chromium and Chrome had run for the first time, and then Chromium with the data
// that the client found. Nobody but the product's makers can give an extension the product's ID, so a test that needs
// one that may start the host replaces the ID, and only that, in the manifest that the client wrote.
class NativeMessagingTest : public WebTest {
protected:
    NativeMessagingTest()
        : WebTest({ .serviceAtStart = ServiceAtStart::absent })
    {
    }

    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(WebTest::SetUp());
        const std::unique_ptr<char, decltype(&g_free)> browser(g_find_program_in_path("chromium"), g_free);
        if (!browser)
            GTEST_SKIP() << "this system has no chromium";
        ASSERT_TRUE(logs("[NativeMessaging] registered with no browser"));
        fs::create_directories(userData("Chromium"));
        fs::create_directories(userData("Google/Chrome"));
        const auto restarted = bench().restartClient();
        ASSERT_TRUE(restarted) << restarted.error();
        ASSERT_TRUE(logs("[NativeMessaging] registered with Google Chrome, Chromium ("));
    }

    void TearDown() override
    {
        if (m_browser) {
            EXPECT_FALSE(m_browser->processes().empty());
            EXPECT_TRUE(m_browser->end(slowly)) << m_browser->processes().size() << " processes are left";
            if (HasFailure())
                std::cerr << "The browser's log:\n" << m_browser->log();
        }
        WebTest::TearDown();
    }

    void letTestExtensionIn()
    {
        std::ifstream source(manifest("Chromium"));
        std::string text(std::istreambuf_iterator<char>(source), {});
        const auto place = text.find(productExtension);
        ASSERT_NE(place, std::string::npos) << text;
        text.replace(place, productExtension.size(), testExtension);
        std::ofstream(manifest("Chromium")) << text;
    }

    // The property list by which the launcher knows of the service, and in the bundle a host that says the same as it
    // is told. Where it keeps its process and its caller is the answer.
    fs::path putService()
    {
        std::ofstream(propertyList()) << "<plist/>\n";
        const auto call = library() / "call";
        const auto host = bench().client().root() / "Applications/Brevanta.app/Contents/MacOS/brevanta-native-host";
        std::ofstream(host) << "#!/bin/sh\necho $$ \"$1\" > '" << call.string() << "'\nexec cat\n";
        fs::permissions(host, fs::perms(0755));
        return call;
    }

    void startBrowser()
    {
        auto browser = Chromium::start({ .userData = userData("Chromium"), .extension = BREVANTA_TEST_EXTENSION });
        ASSERT_TRUE(browser) << browser.error();
        m_browser = std::move(*browser);
    }

    // All that the extension has told, once it is so much.
    [[nodiscard]] std::string told(std::size_t count) { return m_browser->awaitTold(count, slowly).dump(); }

    [[nodiscard]] fs::path library() { return bench().client().root() / "Library"; }
    [[nodiscard]] fs::path propertyList() { return library() / "LaunchDaemons/com.brevanta.daemon.plist"; }
    [[nodiscard]] fs::path userData(const std::string& browser)
    {
        return bench().client().root() / "Users" / g_get_user_name() / "Library/Application Support" / browser;
    }
    [[nodiscard]] fs::path manifest(const std::string& browser)
    {
        return userData(browser) / "NativeMessagingHosts/com.brevanta.native_messaging.json";
    }

    // A browser starts in a second or two on an idle machine.
    static constexpr Milliseconds slowly { 40000 };

private:
    std::unique_ptr<Chromium> m_browser;
};

}

TEST_F(NativeMessagingTest, whatTheClientWritesLetsNoOtherExtensionStartTheHost)
{
    EXPECT_EQ(fs::status(library() / "Application Support/Brevanta/native-host").permissions(), fs::perms(0755));
    for (const auto* browser : { "Chromium", "Google/Chrome" })
        EXPECT_EQ(fs::status(manifest(browser)).permissions(), fs::perms(0644)) << browser;
    EXPECT_FALSE(fs::exists(userData("BraveSoftware"))) << "a browser that has never run";

    startBrowser();
    // That the manifest is not found would be another text.
    EXPECT_EQ(told(1), R"([["disconnected","Access to the specified native messaging host is forbidden."]])");
}

TEST_F(NativeMessagingTest, anExtensionIsToldThatThereIsNoService)
{
    letTestExtensionIn();
    startBrowser();
    EXPECT_EQ(told(1), "[" + std::string(serviceIsGone) + "]");
}

TEST_F(NativeMessagingTest, theServicesOwnHostAnswersUntilTheServiceIsRemoved)
{
    const auto call = putService();
    letTestExtensionIn();
    startBrowser();
    const std::string answer = R"(["message",{"question":"What is blocked?"}])";
    ASSERT_EQ(told(1), "[" + answer + "]");
    std::ifstream file(call);
    pid_t host = 0;
    std::string caller;
    ASSERT_TRUE(file >> host >> caller);
    EXPECT_EQ(caller, "chrome-extension://" + std::string(testExtension) + "/");

    // The extension connects anew when the host has ended.
    fs::remove(propertyList());
    ::kill(host, SIGTERM);
    EXPECT_EQ(
        told(3), "[" + answer + R"(,["disconnected","Native host has exited."],)" + std::string(serviceIsGone) + "]");
}

}
