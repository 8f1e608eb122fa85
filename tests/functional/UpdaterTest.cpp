#include "WebTest.h"

namespace brevanta::functional {

namespace {

constexpr auto checkForUpdates = "Check for Updates…";
constexpr auto installService = "⚠ Install Blocking Service…";
constexpr auto upToDate = "Brevanta is up to date";
constexpr auto offer = "Brevanta 0.122.0 is ready";
constexpr auto passwordDialog = "Administrator";
constexpr auto launched = "[Launch] seconds since console login=";

// Longer than the client takes to find that there is no service.
constexpr Milliseconds slowly { 40000 };

// A client on a machine without the service.
class UpdaterTest : public WebTest {
protected:
    UpdaterTest()
        : WebTest({ .serviceAtStart = ServiceAtStart::byInstall })
    {
    }

    void makeOffer()
    {
        const auto changed = bench().client().changeSystem({ "updater", "offer", "0.122.0" });
        EXPECT_TRUE(changed) << changed.error();
    }

    [[nodiscard]] testing::AssertionResult showsOne(const std::string& title)
    {
        if (bench().display().awaitWindows(title, 1, patience))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "there is no " << title;
    }

    void close(const std::string& title)
    {
        bench().display().pressCloseButton(bench().display().windowsTitled(title).front());
    }

    // The dialog's default button; the letter before the Return key does nothing.
    void pressDefaultButton(const std::string& title)
    {
        const auto pressed = bench().display().typeInto(bench().display().windowsTitled(title).front(), "x");
        ASSERT_TRUE(pressed) << pressed.error();
    }
};

}

TEST_F(UpdaterTest, anOfferIsMadeWithoutAndAfterACheckAndLeadsToARelaunch)
{
    ASSERT_TRUE(showsLine(checkForUpdates));
    click(checkForUpdates);
    ASSERT_TRUE(showsOne(upToDate));
    close(upToDate);
    makeOffer();
    ASSERT_TRUE(showsOne(offer));
    close(offer);
    ASSERT_TRUE(bench().display().awaitWindows(offer, 0, patience));
    EXPECT_EQ(lineCount("[Updater]"), 0U) << "closing it is no consent";
    click(checkForUpdates);
    ASSERT_TRUE(showsOne(offer));
    pressDefaultButton(offer);
    EXPECT_TRUE(awaitLines("[Updater] relaunching for version 0.122.0", 1));
    EXPECT_TRUE(awaitLines(launched, 2));
    ASSERT_TRUE(showsLine(checkForUpdates));
    click(checkForUpdates);
    EXPECT_TRUE(showsOne(upToDate)) << "the offer was taken";
}

TEST_F(UpdaterTest, theRelaunchWaitsForAnInstall)
{
    ASSERT_TRUE(showsLine(installService, slowly));
    click(installService);
    ASSERT_TRUE(showsOne(passwordDialog));
    makeOffer();
    ASSERT_TRUE(showsOne(offer));
    pressDefaultButton(offer);
    ASSERT_TRUE(awaitLines("[DaemonInstall] Sparkle relaunch held until the blocking service install finishes", 1));
    EXPECT_EQ(lineCount("[Updater]"), 0U);
    close(passwordDialog);
    EXPECT_TRUE(awaitLines("[Updater] relaunching for version 0.122.0", 1));
    EXPECT_TRUE(awaitLines(launched, 2));
}

}
