#include "nativehost/NativeMessagingRegistration.h"

#include "fakes/FakeFileStore.h"
#include "fakes/FakePorts.h"
#include "fakes/ManualExecutor.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using namespace NativeMessagingPolicy;
using Lines = std::vector<std::string>;

constexpr const char* launcher = "/root/Library/Application Support/Brevanta/native-host";
constexpr const char* support = "/Users/ada/Library/Application Support/";
constexpr const char* registeredWithNobody
    = "[NativeMessaging] registered with no browser (blocking service not installed)";

class NativeMessagingRegistrationTest : public testing::Test {
protected:
    static std::filesystem::path manifest(const std::string& browser)
    {
        return support + browser + "/NativeMessagingHosts/com.brevanta.native_messaging.json";
    }

    void haveBrowser(const std::string& folder) { ASSERT_TRUE(m_files.createFolder(support + folder)); }

    // The lines that one registration logs.
    Lines registerHost()
    {
        m_log.lines.clear();
        registerNativeMessagingHost(m_queue, m_files, m_log, m_facts);
        EXPECT_EQ(m_files.writes().size(), m_written) << "nothing is done before the queue's turn";
        m_queue.runAll();
        m_written = m_files.writes().size();
        return m_log.lines;
    }

    FakeFileStore m_files;
    FakeSystemLog m_log;
    ManualExecutor m_queue;
    std::size_t m_written { 0 };
    NativeMessagingFacts m_facts {
        .place = NativeMessagingFacts::Place::eligible,
        .mode = Mode::dev,
        .root = "/root",
        .home = "/Users/ada",
        .bundle = "/root/Applications/Brevanta.app",
    };
};

}

TEST_F(NativeMessagingRegistrationTest, WritesTheLauncherAndAManifestForEachBrowserThatHasAFolder)
{
    const auto used = { "Google/Chrome", "Chromium", "BraveSoftware/Brave-Browser", "Arc/User Data" };
    for (const auto* const browser : used)
        haveBrowser(browser);
    haveBrowser("Microsoft"); // Not Edge's.
    m_facts.service = NativeMessagingFacts::Service::installed;
    EXPECT_EQ(registerHost(),
        Lines { "[NativeMessaging] registered with Google Chrome, Chromium, Brave, Arc (blocking service installed)" });
    EXPECT_EQ(m_files.contents(launcher), launcherText(launcherFor("/root", m_facts.bundle, Mode::dev)));
    EXPECT_EQ(m_files.permissions(launcher), FilePermissions::executableByAll);
    for (const auto* const browser : used) {
        EXPECT_EQ(m_files.contents(manifest(browser)), manifestText(launcher));
        EXPECT_EQ(m_files.permissions(manifest(browser)), FilePermissions::readableByAll);
    }
    EXPECT_EQ(m_files.writes().size(), 1 + used.size());
}

TEST_F(NativeMessagingRegistrationTest, KeepsWhatIsRightAndReplacesWhatIsNot)
{
    haveBrowser("Chromium");
    registerHost();
    const auto text = m_files.contents(launcher);
    m_files.failure = FileStoreError { "Permission denied" };
    m_files.folderFailure = m_files.failure;
    EXPECT_EQ(registerHost(), Lines { "[NativeMessaging] registered with Chromium (blocking service not installed)" })
        << "another user's launcher serves as well";
    m_files.failure.reset();
    m_files.folderFailure.reset();

    m_files.replaceFromOutside(launcher, *text); // For everybody to read, but not to run.
    auto manifestOfSameSize = manifestText(launcher);
    manifestOfSameSize.back() = ' ';
    m_files.replaceFromOutside(manifest("Chromium"), manifestOfSameSize);
    registerHost();
    EXPECT_EQ(m_files.permissions(launcher), FilePermissions::executableByAll);
    EXPECT_EQ(m_files.contents(manifest("Chromium")), manifestText(launcher));
    m_facts.mode = Mode::prod;
    registerHost();
    EXPECT_NE(m_files.contents(launcher), text);
}

TEST_F(NativeMessagingRegistrationTest, WithoutALauncherThereAreNoManifests)
{
    haveBrowser("Chromium");
    const Lines failed { "[NativeMessaging] cannot write " + std::string(launcher) + ": Permission denied",
        "[NativeMessaging] could not write the native-messaging launcher; no manifest written" };
    for (auto* const failure : { &m_files.failure, &m_files.folderFailure }) {
        *failure = FileStoreError { "Permission denied" };
        EXPECT_EQ(registerHost(), failed);
        failure->reset();
    }
    EXPECT_TRUE(m_files.writes().empty());
}

TEST_F(NativeMessagingRegistrationTest, AManifestThatCannotBeWrittenCostsTheOtherBrowsersNothing)
{
    haveBrowser("Google/Chrome");
    haveBrowser("Microsoft Edge");
    int writes = 0;
    m_files.whileWriting
        = [&] { m_files.failure = writes++ == 1 ? std::optional(FileStoreError { "Disk full" }) : std::nullopt; };
    EXPECT_EQ(registerHost(),
        (Lines { "[NativeMessaging] cannot write " + manifest("Google/Chrome").string() + ": Disk full",
            "[NativeMessaging] registered with Microsoft Edge (blocking service not installed)" }));
}

TEST_F(NativeMessagingRegistrationTest, FromAnIneligibleBundleNothingIsWritten)
{
    haveBrowser("Chromium");
    m_facts.place = NativeMessagingFacts::Place::ineligible;
    EXPECT_EQ(registerHost(), Lines { "[NativeMessaging] refused registration from an ineligible app bundle" });
    EXPECT_TRUE(m_files.writes().empty());
    EXPECT_FALSE(m_files.isFolder("/root"));
}

TEST_F(NativeMessagingRegistrationTest, BrowsersThatNoManifestHelpsAreNamed)
{
    m_facts.confinedBrowsers = [] { return Lines {}; };
    EXPECT_EQ(registerHost(), Lines { registeredWithNobody });
    m_facts.confinedBrowsers = [] { return Lines { "Chromium (Snap)", "Brave (Flatpak)" }; };
    EXPECT_EQ(registerHost(),
        (Lines { registeredWithNobody,
            "[NativeMessaging] out of reach in a sandbox of their own: Chromium (Snap), Brave (Flatpak)" }));
}

}
