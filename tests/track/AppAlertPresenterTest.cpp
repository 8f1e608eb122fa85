#include "track/AppAlertPresenter.h"

#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

class AppAlertPresenterTest : public testing::Test {
protected:
    void present(const std::string& identifier)
    {
        presenter.present({ .identifier = identifier, .message = {}, .informativeText = {}, .buttons = { "OK" } },
            [this, identifier](AlertResponse response) {
                ends.push_back(identifier + (response.end == AlertEnd::button ? " answered" : " withdrawn"));
            });
    }

    [[nodiscard]] std::vector<std::string> shown() const
    {
        std::vector<std::string> identifiers;
        for (const auto& alert : panel.presented)
            identifiers.push_back(alert.identifier);
        return identifiers;
    }

    void answer()
    {
        panel.answer({ .end = AlertEnd::button, .button = 0 });
        mainLoop.runPosted();
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeAlertPanel panel { mainLoop };
    AppAlertPresenter presenter { panel, mainLoop };
    std::vector<std::string> ends;
};

using Texts = std::vector<std::string>;

}

TEST_F(AppAlertPresenterTest, AlertsComeOneAfterAnotherAndNoneTwice)
{
    present("a");
    present("b");
    present("a");
    present("b");
    EXPECT_TRUE(ends.empty()) << "never from inside the call";
    mainLoop.runPosted();
    EXPECT_EQ(shown(), Texts { "a" });
    EXPECT_EQ(ends, (Texts { "a withdrawn", "b withdrawn" }));
    answer();
    EXPECT_EQ(shown(), (Texts { "a", "b" }));
    answer();
    EXPECT_EQ(ends, (Texts { "a withdrawn", "b withdrawn", "a answered", "b answered" }));
    present("a");
    EXPECT_EQ(shown(), (Texts { "a", "b", "a" })) << "the first one is over";
}

TEST_F(AppAlertPresenterTest, WhatIsWithdrawnIsNeitherShownNorKeepsTheNextWaiting)
{
    present("a");
    present("b");
    present("c");
    presenter.withdraw("b");
    presenter.withdraw("nobody's");
    presenter.withdraw("a");
    mainLoop.runPosted();
    EXPECT_EQ(shown(), (Texts { "a", "c" }));
    EXPECT_EQ(ends, (Texts { "b withdrawn", "a withdrawn" }));
}

TEST_F(AppAlertPresenterTest, AnAlertThatLeavesTheScreenKeepsItsSuccessorOfTheSameNameFromNothing)
{
    present("a");
    presenter.withdraw("a");
    present("a");
    EXPECT_EQ(shown(), Texts { "a" }) << "its predecessor is still on screen";
    answer();
    EXPECT_EQ(shown(), (Texts { "a", "a" }));
    EXPECT_EQ(ends, Texts { "a withdrawn" });

    // The user presses a button of one that is withdrawn before that is known.
    panel.answer({ .end = AlertEnd::button, .button = 0 });
    presenter.withdraw("a");
    present("a");
    presenter.withdraw("a");
    present("b");
    mainLoop.runPosted();
    EXPECT_EQ(shown(), (Texts { "a", "a", "b" }));
    EXPECT_EQ(ends, Texts(3, "a withdrawn")) << "each ends once, and as it was told to";
}

}
