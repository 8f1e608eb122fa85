#include "gtk/NavigationTracker.h"
#include "gtk/WebErrorMapping.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Kind = NavigationNotice::Kind;
using Notices = NavigationTracker::Notices;

const WebError refused = webError(UrlError::cannotConnectToHost);
const WebError timedOut = webError(UrlError::timedOut);
const WebError byPolicy { "WebKitErrorDomain", 102 };

class NavigationTrackerTest : public testing::Test {
protected:
    WebNavigation request()
    {
        EXPECT_EQ(tracker.requested(), Notices {});
        EXPECT_TRUE(tracker.mayHandOver());
        tracker.handedOver();
        return tracker.requestedNavigation();
    }
    WebNavigation startRequested()
    {
        const auto navigation = request();
        EXPECT_EQ(tracker.started(), (Notices { started(navigation) }));
        return navigation;
    }
    WebNavigation startForeign()
    {
        const auto notices = tracker.started();
        EXPECT_EQ(notices.size(), 1u);
        return notices.back().navigation;
    }
    WebNavigation commitRequested()
    {
        const auto navigation = startRequested();
        EXPECT_EQ(tracker.committed(), (Notices { { Kind::committed, navigation, {} } }));
        return navigation;
    }

    static NavigationNotice started(const WebNavigation& navigation) { return { Kind::started, navigation, {} }; }
    static NavigationNotice failed(const WebNavigation& navigation, const WebError& error)
    {
        return { Kind::failed, navigation, error };
    }

    NavigationTracker tracker;
};

}

TEST_F(NavigationTrackerTest, ALoadKeepsItsIdentityToTheEnd)
{
    const auto navigation = commitRequested();
    EXPECT_TRUE(tracker.isUnderWay(navigation));
    EXPECT_EQ(tracker.finished(), (Notices { { Kind::finished, navigation, {} } }));
    EXPECT_FALSE(tracker.isUnderWay(navigation));
    EXPECT_FALSE(tracker.isUnderWay(nullptr));
}

TEST_F(NavigationTrackerTest, WhatStartsUnaskedHasAnIdentityOfItsOwn)
{
    const auto first = commitRequested();
    (void)tracker.finished();
    const auto second = startForeign();
    ASSERT_TRUE(second);
    EXPECT_NE(second, first);
    (void)tracker.committed();
    (void)tracker.finished();
    EXPECT_NE(startForeign(), second);
}

TEST_F(NavigationTrackerTest, AfterAFailureTheEnginesFinishIsSwallowed)
{
    const auto navigation = startRequested();
    EXPECT_EQ(tracker.failed(LoadStage::provisional, refused), (Notices { failed(navigation, refused) }));
    EXPECT_EQ(tracker.finished(), Notices {});
    EXPECT_EQ(tracker.committed(), Notices {});

    // Also when the next load has been asked for from inside of the failure.
    const auto again = startRequested();
    EXPECT_EQ(tracker.failed(LoadStage::provisional, refused), (Notices { failed(again, refused) }));
    const auto next = request();
    EXPECT_EQ(tracker.finished(), Notices {});
    EXPECT_EQ(tracker.started(), (Notices { started(next) }));
}

TEST_F(NavigationTrackerTest, ASupersededLoadFailsOnceBeforeTheNewOneStarts)
{
    // The engine says that it cancelled the old one, or starts the new one without a word.
    for (const bool engineTells : { true, false }) {
        for (const bool hasCommitted : { true, false }) {
            tracker = {};
            const auto old = hasCommitted ? commitRequested() : startRequested();
            const auto next = request();
            if (engineTells) {
                const auto stage = hasCommitted ? LoadStage::committed : LoadStage::provisional;
                EXPECT_EQ(tracker.failed(stage, cancelledError()), (Notices { failed(old, cancelledError()) }));
                EXPECT_EQ(tracker.finished(), Notices {});
                EXPECT_EQ(tracker.started(), (Notices { started(next) }));
            } else {
                EXPECT_EQ(tracker.started(), (Notices { failed(old, cancelledError()), started(next) }));
            }
            EXPECT_TRUE(tracker.isUnderWay(next));
        }
    }
}

TEST_F(NavigationTrackerTest, ALoadThatHasNotStartedIsNeverCancelledByTheEngine)
{
    const auto navigation = request();
    EXPECT_EQ(tracker.failed(LoadStage::provisional, cancelledError()), Notices {});
    EXPECT_EQ(tracker.started(), (Notices { started(navigation) }));
}

TEST_F(NavigationTrackerTest, ALoadThatIsReplacedBeforeItStartedFailsAndTheNextOneWaitsForItsStart)
{
    // The engine cancels the first one, or fails it for a reason that crossed the second one's way.
    for (const auto& end : { cancelledError(), refused }) {
        tracker = {};
        const auto first = request();
        EXPECT_EQ(tracker.requested(), (Notices { failed(first, cancelledError()) }));
        const auto second = tracker.requestedNavigation();
        EXPECT_NE(second, first);
        EXPECT_FALSE(tracker.mayHandOver());
        EXPECT_EQ(tracker.started(), Notices {});
        EXPECT_TRUE(tracker.mayHandOver());
        tracker.handedOver();
        EXPECT_EQ(tracker.failed(LoadStage::provisional, end), Notices {});
        EXPECT_EQ(tracker.finished(), Notices {});
        EXPECT_EQ(tracker.started(), (Notices { started(second) }));
    }
}

TEST_F(NavigationTrackerTest, ALoadThatWaitsGoesOnWhenTheOneBeforeItDoesNotStart)
{
    (void)request();
    (void)tracker.requested();
    const auto waiting = tracker.requestedNavigation();
    EXPECT_EQ(tracker.refused(byPolicy), Notices {}); // The first one has failed already.
    EXPECT_TRUE(tracker.mayHandOver());
    EXPECT_TRUE(tracker.isUnderWay(waiting));
}

TEST_F(NavigationTrackerTest, ALoadThatTheRulesRefuseFailsWithoutHavingStarted)
{
    const auto navigation = request();
    EXPECT_EQ(tracker.failed(LoadStage::provisional, byPolicy), (Notices { failed(navigation, byPolicy) }));
    EXPECT_FALSE(tracker.isUnderWay(navigation));
    EXPECT_FALSE(tracker.isLeavingDocument());

    // The client's own rules, of which the engine says nothing; with no load to start they concern the page's frames.
    const auto another = request();
    EXPECT_EQ(tracker.refused(byPolicy), (Notices { failed(another, byPolicy) }));
    EXPECT_EQ(tracker.refused(byPolicy), Notices {});

    // While a document is still arriving, that one is left alone.
    const auto arriving = commitRequested();
    const auto further = request();
    EXPECT_EQ(tracker.failed(LoadStage::provisional, byPolicy), (Notices { failed(further, byPolicy) }));
    EXPECT_EQ(tracker.finished(), (Notices { { Kind::finished, arriving, {} } }));
}

TEST_F(NavigationTrackerTest, WhatIsGivenUpFailsAtOnceAndItsStopIsSwallowed)
{
    for (const bool hasCommitted : { true, false }) {
        tracker = {};
        const auto navigation = hasCommitted ? commitRequested() : startRequested();
        EXPECT_EQ(tracker.givenUp(navigation, timedOut), (Notices { failed(navigation, timedOut) }));
        EXPECT_EQ(tracker.givenUp(navigation, timedOut), Notices {});
        const auto next = request(); // From inside of the failure.
        const auto stage = hasCommitted ? LoadStage::committed : LoadStage::provisional;
        EXPECT_EQ(tracker.failed(stage, refused), Notices {}) << "a failure that crossed the stop";
        EXPECT_EQ(tracker.finished(), Notices {});
        EXPECT_EQ(tracker.started(), (Notices { started(next) }));
        EXPECT_EQ(tracker.failed(LoadStage::provisional, refused), (Notices { failed(next, refused) }));
    }
    const auto neverStarted = request();
    EXPECT_EQ(tracker.givenUp(neverStarted, timedOut), (Notices { failed(neverStarted, timedOut) }));
    EXPECT_EQ(tracker.failed(LoadStage::provisional, cancelledError()), Notices {});
}

TEST_F(NavigationTrackerTest, AReasonReplacesTheEnginesForThatFailureOnly)
{
    const auto bad = webError(UrlError::badServerResponse);
    const auto navigation = startRequested();
    tracker.failsFor(bad);
    EXPECT_EQ(tracker.failed(LoadStage::provisional, byPolicy), (Notices { failed(navigation, bad) }));
    const auto next = startRequested();
    EXPECT_EQ(tracker.failed(LoadStage::provisional, byPolicy), (Notices { failed(next, byPolicy) }));
}

TEST_F(NavigationTrackerTest, NothingIsToldOfWhatWasBeforeTheProcessEnded)
{
    const auto navigation = startRequested();
    EXPECT_EQ(tracker.processEnded(), (Notices { { Kind::processEnded, nullptr, {} } }));
    EXPECT_FALSE(tracker.isUnderWay(navigation));
    EXPECT_EQ(tracker.committed(), Notices {});
    EXPECT_EQ(tracker.failed(LoadStage::provisional, refused), Notices {});
    EXPECT_EQ(tracker.finished(), Notices {});
    const auto next = request();
    EXPECT_EQ(tracker.started(), (Notices { started(next) }));
}

TEST_F(NavigationTrackerTest, TheDocumentIsBeingLeftUntilTheNextOneCommitsOrTheLoadEnds)
{
    EXPECT_FALSE(tracker.isLeavingDocument());
    const auto navigation = request();
    EXPECT_TRUE(tracker.isLeavingDocument());
    (void)tracker.started();
    EXPECT_TRUE(tracker.isLeavingDocument());
    (void)tracker.committed();
    EXPECT_FALSE(tracker.isLeavingDocument());
    (void)tracker.finished();
    (void)startForeign();
    EXPECT_TRUE(tracker.isLeavingDocument());
    (void)tracker.failed(LoadStage::provisional, refused);
    EXPECT_FALSE(tracker.isLeavingDocument());
}

}
