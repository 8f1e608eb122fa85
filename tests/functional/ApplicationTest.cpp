#include "ClientTest.h"

#include <csignal>

namespace brevanta::functional {

class ApplicationTest : public ClientTest {
protected:
    void closeWindow()
    {
        ASSERT_TRUE(showsWindows(1));
        bench().display().pressCloseButton(bench().display().windowsTitled(BrevantaClient::windowTitle).front());
        ASSERT_TRUE(showsWindows(0));
    }
};

TEST_F(ApplicationTest, closingTheWindowHidesItAndOpenBrevantaShowsItAgain)
{
    closeWindow();
    click("Open Brevanta");
    EXPECT_TRUE(showsWindows(1));
    EXPECT_TRUE(bench().client().process().isRunning());
}

TEST_F(ApplicationTest, aSecondStartShowsTheFirstOnesWindowAndEnds)
{
    closeWindow();
    const auto second = bench().client().startProcess({});
    ASSERT_TRUE(second) << second.error();
    EXPECT_EQ((*second)->awaitExit(patience), 0) << (*second)->errors().text();
    EXPECT_TRUE(showsWindows(1));
    EXPECT_TRUE(bench().client().process().isRunning());
    ASSERT_TRUE(showsDescription(notBlocking)) << "the first start's item is still served";
}

TEST_F(ApplicationTest, quitEndsTheClientAndLeavesNothingBehind)
{
    ASSERT_TRUE(showsDescription(notBlocking));
    click("Quit");
    expectCleanExit(Milliseconds(3000));
}

TEST_F(ApplicationTest, aTerminationSignalEndsTheClientAsQuitDoes)
{
    ASSERT_TRUE(showsDescription(notBlocking));
    bench().client().process().signal(SIGTERM);
    expectCleanExit(Milliseconds(3000));
}

}
