#include "WebTest.h"

#include <filesystem>
#include <nlohmann/json.hpp>

namespace brevanta::functional {

namespace {

namespace fs = std::filesystem;

constexpr auto installService = "⚠ Install Blocking Service…";
constexpr auto updateService = "⚠ Update Blocking Service to 0.121.0…";
constexpr auto serviceIsCurrent = "✓ Blocking Service 0.121.0";
constexpr auto restartService = "Restart Blocking Service…";
constexpr auto installing = "Blocking Service: installing…";
constexpr auto passwordDialog = "Administrator";
constexpr auto offerToFinish = "Finish removing the blocking service";

// Longer than a service takes from its end to the line that offers a restart.
constexpr Milliseconds slowly { 40000 };

// A client on a machine without the service, which it installs from its own bundle.
class InstallTest : public WebTest {
protected:
    InstallTest()
        : WebTest({ .serviceAtStart = ServiceAtStart::byInstall })
    {
    }

    // What launchctl started belongs to no process group of ours.
    void TearDown() override
    {
        system({ "service", "unloaded" });
        WebTest::TearDown();
    }

    void system(const std::vector<std::string>& command)
    {
        const auto changed = bench().client().changeSystem(command);
        EXPECT_TRUE(changed) << changed.error();
    }

    std::string commandService(const std::string& line)
    {
        const auto answer = bench().commandInstalledService(line);
        EXPECT_TRUE(answer) << line << ": " << answer.error();
        return answer.value_or(std::string());
    }

    [[nodiscard]] testing::AssertionResult asksForPassword()
    {
        if (bench().display().awaitWindows(passwordDialog, 1, patience))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "nobody asks for a password";
    }

    void cancelPassword()
    {
        ASSERT_TRUE(asksForPassword());
        bench().display().pressCloseButton(bench().display().windowsTitled(passwordDialog).front());
    }

    void givePassword()
    {
        ASSERT_TRUE(asksForPassword());
        const auto typed
            = bench().display().typeInto(bench().display().windowsTitled(passwordDialog).front(), "secret");
        ASSERT_TRUE(typed) << typed.error();
    }

    void install()
    {
        ASSERT_TRUE(showsLine(installService, slowly));
        click(installService);
        givePassword();
        ASSERT_TRUE(showsLine(serviceIsCurrent));
    }

    [[nodiscard]] fs::path library() { return bench().client().root() / "Library"; }
    [[nodiscard]] fs::path program() { return library() / "PrivilegedHelperTools/com.brevanta.daemon"; }
    [[nodiscard]] fs::path propertyList() { return library() / "LaunchDaemons/com.brevanta.daemon.plist"; }
    [[nodiscard]] fs::path support(const std::string& name) { return library() / "Application Support" / name; }

    void expectRemoved()
    {
        for (const auto& gone : { program(), propertyList(), support("Kestrelune"), support("Kestrelune.removing") })
            EXPECT_FALSE(fs::exists(fs::symlink_status(gone))) << gone;
        EXPECT_TRUE(fs::exists(support("Kestrelune.removal.lock"))) << "the lock stays";
    }

    // The page has been told of a removal in this state, at last.
    [[nodiscard]] testing::AssertionResult tellsRemoval(const std::string& state)
    {
        if (web().awaitTrue(
                "window.heard.filter((e) => e.name === 'kestrelune_removal_state').at(-1)?.detail.state === '" + state
                    + "'",
                slowly))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << web().evaluate("window.heard.at(-1)").value_or("nothing was told");
    }
};

}

TEST_F(InstallTest, theServiceIsInstalledUpdatedAndRestarted)
{
    ASSERT_TRUE(showsLine(installService, slowly));
    click(installService);
    ASSERT_TRUE(showsLine(installing));
    cancelPassword();
    EXPECT_TRUE(showsLine(installService));
    EXPECT_TRUE(logs("[DaemonInstall] administrator prompt cancelled by the user"));
    EXPECT_FALSE(fs::exists(program()));

    install();
    EXPECT_EQ(fs::status(program()).permissions(), fs::perms(0755));
    EXPECT_EQ(fs::status(propertyList()).permissions(), fs::perms(0644));
    EXPECT_EQ(fs::status(support("Kestrelune.removal.lock")).permissions(), fs::perms(0600));
    EXPECT_TRUE(showsLine("Blocking: Inactive (50.00 Coins)"));

    commandService("version 0.120.0");
    ASSERT_TRUE(showsLine(updateService));
    EXPECT_TRUE(bench().display().awaitWindows("Update the blocking service", 1, patience));
    click(updateService);
    givePassword();
    EXPECT_TRUE(showsLine(serviceIsCurrent)) << "the new one says its own version";

    commandService("quit");
    ASSERT_TRUE(showsLine(restartService, slowly));
    system({ "service", "refuse-bootstrap", "3" });
    click(restartService);
    givePassword();
    EXPECT_TRUE(showsLine(serviceIsCurrent));
    EXPECT_FALSE(bench().client().log().contains("secret"));
}

TEST_F(InstallTest, aFailureIsSaidInTheScriptsOwnWords)
{
    ASSERT_TRUE(showsLine(installService, slowly));
    click(installService);
    ASSERT_TRUE(asksForPassword());
    // The removal begins while the user thinks about it.
    fs::create_directories(support(""));
    fs::create_symlink("nowhere", support("Kestrelune.removing"));
    givePassword();
    EXPECT_TRUE(bench().display().awaitWindows("Installation Failed", 1, patience));
    EXPECT_TRUE(
        logs("[DaemonInstall] Daemon installation failed: Brevanta began removing its blocking service from this "
             "Mac while the password window was open, so nothing was reinstalled."));
    EXPECT_FALSE(fs::exists(program()));
    EXPECT_TRUE(showsLine(installService));
}

TEST_F(InstallTest, aQuitIsHeldUntilTheInstallHasEnded)
{
    ASSERT_TRUE(showsLine(installService, slowly));
    click(installService);
    ASSERT_TRUE(asksForPassword());
    click("Quit");
    EXPECT_TRUE(showsLine("Quitting after the install finishes…"));
    click("Quitting after the install finishes…");
    EXPECT_TRUE(logs("[DaemonInstall] quit already held: ignoring a repeated Quit"));
    EXPECT_EQ(lineCount("[DaemonInstall] quit held until the blocking service install finishes"), 1u);
    EXPECT_TRUE(bench().client().process().isRunning());
    givePassword();
    expectCleanExit(patience);
    EXPECT_EQ(lineCount("[DaemonInstall] install finished: proceeding with the held quit"), 1u);
    EXPECT_EQ(commandService("get daemon_version"), "\"0.121.0\"") << "the install was not cut short";
}

TEST_F(InstallTest, theServiceIsRemovedAtThePagesRequest)
{
    install();
    ASSERT_TRUE(showsPage());
    listenFor("kestrelune_removal_state");
    post("{ type: 'get_removal_state' }");
    ASSERT_TRUE(tellsRemoval("none"));

    post("{ type: 'request_uninstall', account: '123' }");
    ASSERT_TRUE(tellsRemoval("pending"));
    post("{ type: 'cancel_uninstall', actionId: window.heard.at(-1).detail.actionId, account: '123' }");
    ASSERT_TRUE(tellsRemoval("none"));
    EXPECT_FALSE(fs::exists(support("Kestrelune/removal-requested")));

    post("{ type: 'request_uninstall', account: '123' }");
    ASSERT_TRUE(tellsRemoval("pending"));
    EXPECT_TRUE(fs::exists(support("Kestrelune/removal-requested")));
    // The service goes in the middle of it, and comes back as another launch.
    commandService("removal hanging -600");
    ASSERT_TRUE(tellsRemoval("finishing"));
    commandService("quit");
    ASSERT_TRUE(tellsRemoval("unavailable"));
    ASSERT_TRUE(showsLine(restartService, slowly));
    click(restartService);
    post("{ type: 'request_uninstall', account: '123' }");
    EXPECT_TRUE(logs("[Removal] request_uninstall refused: a blocking service install is in flight (#8008)"));
    givePassword();
    ASSERT_TRUE(showsLine(serviceIsCurrent));
    ASSERT_TRUE(tellsRemoval("pending"));

    commandService("removal finishing");
    ASSERT_TRUE(tellsRemoval("finishing"));
    post("{ type: 'auth_token', token: 'tok-of-nobody' }");
    EXPECT_TRUE(logs("[KestreluneMac] auth_token bridge: removal finishing, token not forwarded"));
    ASSERT_TRUE(tellsRemoval("removed"));
    EXPECT_TRUE(showsLine(installService, slowly));
    expectRemoved();

    fs::remove(bench().client().root() / "var/db/com.brevanta.daemon.launches");
    install();
    EXPECT_TRUE(tellsRemoval("none")) << "a new service begins anew, and to count its launches too";
}

TEST_F(InstallTest, aRemovalThatHangsIsFinishedByAnAdministrator)
{
    install();
    ASSERT_TRUE(showsPage());
    listenFor("kestrelune_removal_state");
    post("{ type: 'request_uninstall', account: '123' }");
    ASSERT_TRUE(tellsRemoval("pending"));
    EXPECT_EQ(lineCount("offering to finish it"), 0u);
    commandService("removal hanging 31");
    ASSERT_TRUE(tellsRemoval("finishing"));
    ASSERT_TRUE(bench().display().awaitWindows(offerToFinish, 1, patience));
    // Return is pressed wherever the keyboard is, after a letter that no button takes.
    ASSERT_TRUE(bench().display().typeInto(bench().display().windowsTitled(offerToFinish).front(), "x"));
    ASSERT_TRUE(showsLine("Blocking Service: removing…"));
    givePassword();
    ASSERT_TRUE(tellsRemoval("removed"));
    EXPECT_TRUE(showsLine(installService, slowly));
    expectRemoved();
    EXPECT_TRUE(fs::exists(support("Brevanta/native-host"))) << "browsers must learn of it";
}

}
