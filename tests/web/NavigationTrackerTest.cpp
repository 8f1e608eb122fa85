#include "web/NavigationTracker.h"

#include "web/UrlError.h"

#include <algorithm>
#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace brevanta {

namespace {

// A play is a row of events with what each leads to: "request > load; ask; start > start 1; fail > fail 1 -1". Calls
// of the delegate carry the navigation's number, in the order in which they were met. Behind an event stand the
// engine's name for the navigation, a small letter, its number here, and the host of a URL.
class Player {
public:
    // The same play with what the events really lead to.
    std::string play(const std::string& text)
    {
        std::string played;
        std::istringstream events(text);
        for (std::string event; std::getline(events >> std::ws, event, ';');) {
            event = event.substr(0, event.find(" >"));
            const auto outcome = outcomeOf(event);
            played += (played.empty() ? "" : "; ") + event + (outcome.empty() ? "" : " > " + outcome);
        }
        return played;
    }

private:
    std::string outcomeOf(const std::string& text)
    {
        std::istringstream words(text);
        std::string event;
        WebNavigation navigation;
        std::optional<Url> url;
        words >> event;
        for (std::string word; words >> word;) {
            if (word.size() > 1)
                url = Url { .text = word, .scheme = "https", .host = word };
            else
                navigation = word < "a" ? m_met.at(static_cast<std::size_t>(word[0] - '1')) : nameOf(word[0]);
        }
        std::string outcome;
        const auto add = [&](const std::string& what) { outcome += (outcome.empty() ? "" : ", ") + what; };
        if (event == "document")
            return m_tracker.document() ? m_tracker.document()->host : "unknown";
        for (const auto& notice : reduce(event, navigation, url))
            add(describe(notice));
        if (m_tracker.requestedNavigation())
            (void)numberOf(m_tracker.requestedNavigation());
        const auto step = m_tracker.takeStep();
        if (step != NavigationTracker::Step::wait)
            add(step == NavigationTracker::Step::stop ? "stop" : "load");
        return outcome;
    }

    NavigationTracker::Notices reduce(
        const std::string& event, const WebNavigation& navigation, const std::optional<Url>& url)
    {
        auto& tracker = m_tracker;
        const auto silently = [](auto change) {
            change();
            return NavigationTracker::Notices {};
        };
        const std::map<std::string, std::function<NavigationTracker::Notices()>> events {
            { "request", [&] { return tracker.requested(navigation, url); } },
            { "ask", [&] { return silently([&] { tracker.asked(); }); } },
            { "start", [&] { return tracker.started(navigation); } },
            { "respond", [&] { return silently([&] { tracker.responded(url); }); } },
            { "find-bad", [&] { return silently([&] { tracker.failsFor(webError(UrlError::badServerResponse)); }); } },
            { "commit", [&] { return tracker.committed(navigation, url); } },
            { "move", [&] { return silently([&] { tracker.viewUrlChanged(url); }); } },
            { "finish", [&] { return tracker.finished(navigation); } },
            { "fail", [&] { return tracker.failed(navigation, LoadStage::provisional, webError(UrlError::unknown)); } },
            { "cancel", [&] { return tracker.failed(navigation, LoadStage::provisional, cancelledError()); } },
            { "break-off", [&] { return tracker.failed(navigation, LoadStage::committed, cancelledError()); } },
            { "refuse", [&] { return tracker.refused({ "WebKitErrorDomain", 102 }); } },
            { "give-up", [&] { return tracker.givenUp(navigation, webError(UrlError::timedOut)); } },
            { "end-process", [&] { return tracker.processEnded(); } },
        };
        return events.at(event)();
    }

    std::string describe(const NavigationNotice& notice)
    {
        static constexpr std::array names { "start ", "commit ", "finish ", "fail ", "ended" };
        std::string text = names.at(static_cast<std::size_t>(notice.kind));
        if (notice.navigation)
            text += std::to_string(numberOf(notice.navigation));
        return notice.error == WebError {} ? text : text + ' ' + std::to_string(notice.error.code);
    }

    std::size_t numberOf(const WebNavigation& navigation)
    {
        const auto index = static_cast<std::size_t>(std::ranges::find(m_met, navigation) - m_met.begin());
        if (index == m_met.size())
            m_met.push_back(navigation);
        return index + 1;
    }
    WebNavigation nameOf(char letter) { return { m_letters, &(*m_letters)[static_cast<std::size_t>(letter - 'a')] }; }

    NavigationTracker m_tracker;
    std::vector<WebNavigation> m_met;
    std::shared_ptr<std::array<char, 26>> m_letters { std::make_shared<std::array<char, 26>>() };
};

void expectPlays(const std::vector<const char*>& plays)
{
    for (const std::string play : plays)
        EXPECT_EQ(Player().play(play), play);
}

}

TEST(NavigationTracker, ALoadKeepsItsIdentityAndWhatStartsUnaskedHasOneOfItsOwn)
{
    expectPlays({
        "request > load; ask; start > start 1; commit > commit 1; finish > finish 1; start > start 2; commit > commit "
        "2; "
        "finish > finish 2; start > start 3",
        "request a; start a > start 1; commit a > commit 1; finish a > finish 1; start b > start 2; fail b > fail 2 "
        "-1",
        "start > start 1; start > fail 1 -999, start 2", // The engine says nothing of the first one's end.
        "commit > start 1, commit 1", // A document never comes unnoticed.
    });
}

// The page has begun a navigation before the load was handed over, and the engine has not told it yet.
TEST(NavigationTracker, WhatStartsWithoutHavingAskedSinceALoadWasHandedOverIsThePagesOwn)
{
    expectPlays({
        "request > load; start > start 2; ask; cancel > fail 2 -999; finish; start > start 1; commit > commit 1",
        "request > load; start > start 2; commit > commit 2; ask; break-off > fail 2 -999; finish; start > start 1",
        "start > start 1; request > stop; commit > commit 1; break-off > fail 1 -999; finish > load; ask; start > "
        "start 2",
        "start a > start 1; request b; commit a > commit 1; cancel a > fail 1 -999; start b > start 2",
    });
}

TEST(NavigationTracker, ALoadIsHandedOverWhenNothingElseIsUnderWay)
{
    expectPlays({
        "start > start 1; request > stop; cancel > fail 1 -999; finish > load; ask; start > start 2",
        "start > start 1; commit > commit 1; request > stop; break-off > fail 1 -999; finish > load; ask; start > "
        "start 2",
        "start > start 1; commit > commit 1; request > stop; finish > finish 1, load; ask; start > start 2",
        "start > start 1; request > stop; start > fail 1 -999, start 3, stop; cancel > fail 3 -999; finish > load",
        // From inside of a failure, of which the engine goes on to say that it has finished.
        "request > load; ask; start > start 1; fail > fail 1 -1; request; finish > load; ask; start > start 2",
    });
}

TEST(NavigationTracker, ALoadThatIsReplacedBeforeItStartedFailsAndTheNextOneGoesOn)
{
    expectPlays({
        "request > load; cancel; finish; ask; start > start 1", // It is never the one that the engine cancels.
        "request > load; request > fail 1 -999; ask; start > stop; cancel; finish > load; ask; start > start 2",
        "request > load; request > fail 1 -999; ask; start > stop; fail; finish > load; ask; start > start 2",
        "request > load; request > fail 1 -999; refuse > load; ask; start > start 2",
        "request a; request b > fail 1 -999; start a; commit a; cancel a; start b > start 2; commit b > commit 2",
    });
}

TEST(NavigationTracker, ALoadThatTheRulesRefuseFailsWithoutHavingStarted)
{
    expectPlays({
        "request > load; ask; fail > fail 1 -1; finish; request > load",
        "request > load; refuse > fail 1 102; refuse; request > load",
        "request a; fail a > fail 1 -1; start b > start 2",
        "request > load; ask; start > start 1; find-bad; fail > fail 1 -1011; finish; start > start 2; fail > fail 2 "
        "-1",
    });
}

TEST(NavigationTracker, WhatIsGivenUpFailsOnceAndIsNotWaitedFor)
{
    expectPlays({
        "request > load; ask; start > start 1; give-up 1 > fail 1 -1001; give-up 1; request; fail; finish > load; ask; "
        "start > start 2; fail > fail 2 -1",
        "start > start 1; commit > commit 1; give-up 1 > fail 1 -1001; request; break-off; finish > load",
        "request > load; give-up 1 > fail 1 -1001; cancel; finish; request > load", // Lost by the engine.
        "start > start 1; commit > commit 1; request > stop; give-up 2 > fail 2 -1001, fail 1 -999; request > load",
        "request a; give-up 1 > fail 1 -1001; start a; commit a trusted; document > trusted; finish a; start b > start "
        "2",
    });
}

TEST(NavigationTracker, NothingIsToldOfWhatWasBeforeTheProcessEnded)
{
    expectPlays({
        "request > load; ask; start > start 1; commit > commit 1; end-process > ended; break-off; finish; request > "
        "load",
        "request a; start b > start 2; end-process > ended; start a; fail b; finish a; request c; start c > start 3",
        "start > start 1; commit trusted > commit 1; end-process > ended; document > unknown",
    });
}

// Engines that give a site's documents a process of their own.
TEST(NavigationTracker, ADocumentGoesOnArrivingUntilAnotherCommits)
{
    expectPlays({
        "start > start 1; commit > commit 1; start > start 2; finish > finish 1; commit > commit 2; finish > finish 2",
        "start > start 1; commit > commit 1; start > start 2; fail > fail 2 -1; finish; finish > finish 1",
        "start > start 1; commit > commit 1; start > start 2; commit > fail 1 -999, commit 2",
        "start a > start 1; commit a > commit 1; start b > start 2; finish a > finish 1; commit b > commit 2",
    });
}

TEST(NavigationTracker, TheDocumentIsNeverTheOneOfALoadThatIsUnderWay)
{
    expectPlays({
        "document > unknown; start > start 1; commit guest > commit 1; document > guest; start > start 2; document > "
        "guest",
        // The view's URL is the reload's from when that is asked for until the engine has heard of it.
        "request a trusted; start b > start 2; commit b trusted > commit 2; document > unknown",
        "request a trusted; start b > start 2; respond guest; commit b trusted > commit 2; document > guest; "
        "break-off b > fail 2 -999; start a > start 1; commit a trusted > commit 1; document > trusted",
        "request a trusted; start b > start 2; commit b guest > commit 2; document > guest",
        // A load that the engine has lost or refused stands in nobody's way for ever.
        "request a trusted; give-up 1 > fail 1 -1001; start b > start 2; commit b trusted > commit 2; document > "
        "trusted",
        "request a trusted; fail a > fail 1 -1; start b > start 2; commit b trusted > commit 2; document > trusted",
        "start > start 1; commit guest > commit 1; finish > finish 1; move trusted; document > guest",
    });
}

}
