#include "app/InstallHold.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Hold = InstallHold;
using Commands = std::vector<Hold::Command>;

const auto quit = Hold::QuitAsked { Hold::Install::inFlight };
const auto relaunch = Hold::RelaunchAsked { Hold::Install::inFlight };
const auto end = Hold::InstallEnded {};
const Hold::Log quitHeld { "[DaemonInstall] quit held until the blocking service install finishes" };
const Hold::Log quitRepeated { "[DaemonInstall] quit already held: ignoring a repeated Quit" };
const Hold::Log quitProceeds { "[DaemonInstall] install finished: proceeding with the held quit" };
const Hold::Log relaunchHeld { "[DaemonInstall] Sparkle relaunch held until the blocking service install finishes" };

}

TEST(InstallHold, WhatWouldEndTheApplicationWaitsForTheInstall)
{
    struct Step {
        Hold::Event event;
        Commands commands;
    };
    const std::vector<std::vector<Step>> stories {
        { { Hold::QuitAsked {}, { Hold::Allow {} } }, { Hold::RelaunchAsked {}, { Hold::Allow {} } }, { end, {} } },
        { { quit, { Hold::PutOff {}, quitHeld, Hold::AwaitEnd {}, Hold::ShowQuitHeld {} } },
            { quit, { Hold::PutOff {}, quitRepeated } }, { end, { quitProceeds, Hold::Quit {} } }, { end, {} },
            { Hold::QuitAsked {}, { Hold::Allow {} } } },
        { { relaunch, { Hold::PutOff {}, relaunchHeld, Hold::AwaitEnd {} } },
            { relaunch, { Hold::PutOff {}, relaunchHeld } }, { end, { Hold::Relaunch {} } }, { end, {} } },
        { { relaunch, { Hold::PutOff {}, relaunchHeld, Hold::AwaitEnd {} } },
            { quit, { Hold::PutOff {}, quitHeld, Hold::ShowQuitHeld {} } },
            { end, { Hold::Relaunch {}, quitProceeds, Hold::Quit {} } } },
    };
    for (std::size_t story = 0; story < stories.size(); ++story) {
        Hold hold;
        for (std::size_t step = 0; step < stories[story].size(); ++step)
            EXPECT_TRUE(hold.reduce(stories[story][step].event) == stories[story][step].commands)
                << "story " << story << ", step " << step;
        EXPECT_EQ(hold, Hold {});
    }
}

}
