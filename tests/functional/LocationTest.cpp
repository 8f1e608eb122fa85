#include "support/BrevantaClient.h"
#include "support/FileContents.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/VirtualDisplay.h"

#include <cstdlib>
#include <fstream>
#include <glib.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace brevanta::functional {

namespace {

namespace fs = std::filesystem;

constexpr Milliseconds patience { 10000 };
constexpr auto alertTitle = "Install Brevanta in Applications";

// Whether bwrap(1) is there and yet cannot mount anything, as in a root that is no mount point: chroot(2) into a
// folder.
static bool cannotMountHere()
{
    const int status = std::system("bwrap --dev-bind / / true 2>/dev/null");
    constexpr int notFound = 127; // sh(1)
    return status != 0 && WEXITSTATUS(status) != notFound;
}

// A client in a folder of the development root.
class LocationTest : public testing::Test {
protected:
    void SetUp() override
    {
        auto startedDisplay = VirtualDisplay::start();
        ASSERT_TRUE(startedDisplay) << startedDisplay.error();
        display = std::move(*startedDisplay);
        auto startedBus = PrivateBus::start();
        ASSERT_TRUE(startedBus) << startedBus.error();
        bus = std::move(*startedBus);
        const auto started = service.start();
        ASSERT_TRUE(started) << started.error();
    }

    void newClient(const fs::path& folder, const std::string& executable = clientExecutable(),
        BundleVolume volume = BundleVolume::writable)
    {
        client = std::make_unique<BrevantaClient>(BrevantaClientOptions {
            .executable = executable,
            .busAddress = bus->address(),
            .display = display->name(),
            .socketPath = service.socketPath(),
            .appUrl = "https://localhost:1/",
            .bundleFolder = folder,
            .volume = volume,
        });
    }
    void start()
    {
        const auto started = client->start();
        ASSERT_TRUE(started) << started.error();
    }
    void startIn(const fs::path& folder)
    {
        newClient(folder);
        start();
    }
    void writeProgram(const fs::path& path, const std::string& script) const
    {
        const auto program = client->root() / path;
        fs::create_directories(program.parent_path());
        std::ofstream(program) << "#!/bin/sh\n" << script << '\n';
        fs::permissions(program, fs::perms::owner_all);
    }

    [[nodiscard]] testing::AssertionResult isRefused(const std::string& reason)
    {
        if (!display->awaitWindows(alertTitle, 1, patience))
            return testing::AssertionFailure() << "no alert is shown:\n" << client->log();
        if (!client->log().contains("[AppLocation] ineligible (" + reason + "): "))
            return testing::AssertionFailure() << client->log();
        return testing::AssertionSuccess();
    }
    void pressDefaultButton()
    {
        // Return is pressed wherever the keyboard is, after a letter that no button takes.
        const auto pressed = display->typeInto(display->windowsTitled(alertTitle).front(), "x");
        ASSERT_TRUE(pressed) << pressed.error();
    }
    void closeAlert() { display->pressCloseButton(display->windowsTitled(alertTitle).front()); }
    void expectEndWithoutATrace()
    {
        EXPECT_EQ(client->process().awaitExit(patience), 0) << client->log();
        EXPECT_TRUE(bus->awaitNoOwner(BrevantaClient::busName, patience));
        EXPECT_EQ(service.requestCount("get_status"), 0U);
        EXPECT_FALSE(client->log().contains("[Launch]")) << client->log();
        EXPECT_FALSE(fs::exists(usersFolder() / ".config/autostart"));
    }

    [[nodiscard]] static fs::path usersFolderInRoot() { return fs::path("Users") / g_get_user_name(); }
    [[nodiscard]] fs::path usersFolder() const { return client->root() / usersFolderInRoot(); }
    [[nodiscard]] std::string opened() const { return contentsOf(client->openedUrlsFile()); }

    StandInService service { serviceExecutable() };
    std::unique_ptr<VirtualDisplay> display;
    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<BrevantaClient> client;
};

}

TEST_F(LocationTest, inAFolderOfApplicationsTheClientShowsTheRightFolderAndQuits)
{
    startIn("Applications/Folder");
    ASSERT_TRUE(isRefused("nestedBundle"));
    pressDefaultButton();
    expectEndWithoutATrace();
    EXPECT_TRUE(awaitByAsking([this] { return !opened().empty(); }, patience));
    EXPECT_EQ(opened(), fs::canonical(client->root() / "Applications").string() + "\n");
}

TEST_F(LocationTest, inTheUsersOwnApplicationsTheClientQuits)
{
    startIn(usersFolderInRoot() / "Applications");
    ASSERT_TRUE(isRefused("userApplications"));
    closeAlert();
    expectEndWithoutATrace();
    EXPECT_EQ(opened(), "");
}

TEST_F(LocationTest, inDownloadsTheClientSurvivesLinksAndFurtherStartsAndATerminationSignal)
{
    startIn(usersFolderInRoot() / "Downloads");
    ASSERT_TRUE(isRefused("elsewhere"));
    for (const auto* const argument : { "brevanta://open/device-setup", "" }) {
        const auto further
            = client->startProcess(*argument ? std::vector<std::string> { argument } : std::vector<std::string>());
        ASSERT_TRUE(further) << further.error();
        EXPECT_EQ((*further)->awaitExit(patience), 0) << (*further)->errors().text();
    }
    EXPECT_EQ(display->windowsTitled(alertTitle).size(), 1U);
    client->process().signal(SIGTERM);
    expectEndWithoutATrace();
}

TEST_F(LocationTest, onADiskImageTheClientQuits)
{
    if (cannotMountHere())
        GTEST_SKIP() << "bwrap cannot mount anything in this root";
    newClient("Volumes/Brevanta", clientExecutable(), BundleVolume::readOnly);
    start();
    ASSERT_TRUE(isRefused("readOnlyVolume"));
    closeAlert();
    expectEndWithoutATrace();
}

TEST_F(LocationTest, whereTheSystemHasTranslocatedItTheClientQuits)
{
    if (cannotMountHere())
        GTEST_SKIP() << "bwrap cannot mount anything in this root";
    // On a Mac such a volume is read-only as well.
    newClient("private/var/folders/x/AppTranslocation/y/d", clientExecutable(), BundleVolume::readOnly);
    start();
    ASSERT_TRUE(isRefused("translocated"));
    closeAlert();
    expectEndWithoutATrace();
}

TEST_F(LocationTest, inTheRightPlaceTheClientIsRegisteredAndOtherCopiesAreForgotten)
{
    newClient("Applications");
    // What stands for the Mac's programs: one finds two copies, the other keeps what it is told.
    const auto applications = client->root() / "Applications";
    const auto forgotten = client->root() / "forgotten";
    writeProgram("usr/bin/mdfind", "printf '%s\\n' '" + (applications / "Brevanta.app").string() + "' '/Old/A B.app'");
    writeProgram("System/Library/Frameworks/CoreServices.framework/Versions/Current/Frameworks/"
                 "LaunchServices.framework/Versions/Current/Support/lsregister",
        "printf '%s\\n' \"$@\" >'" + forgotten.string() + "'");
    start();
    EXPECT_TRUE(awaitByAsking(
        [&] { return client->log().contains("[LoginItem] registered after the 1st attempt"); }, patience));
    EXPECT_TRUE(contentsOf(usersFolder() / ".config/autostart/com.brevanta.KestreluneMac.desktop")
            .contains("Exec=\"" + fs::canonical(applications).string() + "/Brevanta.app/Contents/MacOS/Brevanta\"\n"));
    EXPECT_TRUE(awaitByAsking([&] { return contentsOf(forgotten) == "-u\n/Old/A B.app\n"; }, patience))
        << contentsOf(forgotten);
    EXPECT_FALSE(client->log().contains("[AppLocation]")) << client->log();
    client->process().end();
}

TEST_F(LocationTest, aProductionBuildIsDeafToTheDevelopmentRoot)
{
    const TemporaryDirectory folder;
    const auto program = folder.path() / "Brevanta.app/Contents/MacOS/Brevanta";
    fs::create_directories(program.parent_path());
    fs::copy_file(prodClientExecutable(), program);
    newClient("Applications", program.string());
    start();
    EXPECT_TRUE(display->awaitWindows(alertTitle, 1, patience)) << "this is not the machine's Applications folder";
    closeAlert();
    expectEndWithoutATrace();
    // The log belongs to the system's log; only what the desktop's own libraries say may be here.
    EXPECT_FALSE(client->log().contains("[AppLocation]")) << client->log();
}

}
