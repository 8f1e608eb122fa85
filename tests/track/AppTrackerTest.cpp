#include "track/AppTracker.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "notify/NoticeCopy.h"
#include "support/StatusReply.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Notices = std::vector<std::string>;

// Sessions of "com.example.Editor", each an identifier.
Json sessions(const std::vector<std::string>& identifiers, const std::string& bundle = "com.example.Editor")
{
    auto list = Json::array();
    for (const auto& identifier : identifiers)
        list.push_back({ { "bundle_id", bundle }, { "session_id", identifier } });
    return { { "auto_track_sessions", list } };
}

class AppTrackerTest : public testing::Test {
protected:
    AppTrackerTest()
    {
        m_workspace.launch({ "com.example.Editor", 7 });
        m_tracker.emplace(AppTracker::Dependencies { .mainLoop = m_loop,
            .clock = m_clock,
            .workspace = m_workspace,
            .generation = m_generation,
            .copy = [this]() -> const NoticeCopy& { return m_copy; },
            .post =
                [this](const AppTracker::Notice& notice) {
                    m_notices.push_back(notice.identifier + "|" + notice.title + "|" + notice.body);
                } });
    }

    void consume(const Json& additions) { m_tracker->consume(statusWith(additions)); }

    // The identifiers of what was posted since this was called last.
    [[nodiscard]] Notices posted()
    {
        Notices identifiers;
        for (const auto& notice : std::exchange(m_notices, {}))
            identifiers.push_back(notice.substr(0, notice.find('|')));
        return identifiers;
    }

    FakeClock m_clock;
    FakeMainLoop m_loop { m_clock };
    FakeWorkspace m_workspace { m_loop };
    FakeUserDefaults m_defaults;
    DeliveryGeneration m_generation { m_defaults };
    NoticeCopy m_copy { {},
        { { "macApp.notice.autoTrackStart.title", "Started" }, { "macApp.notice.autoTrackStart.body", "{app} runs" },
            { "macApp.notice.autoTrackStop.title", "Stopped" },
            { "macApp.notice.autoTrackStop.body", "{app} ended" } } };
    std::optional<AppTracker> m_tracker;
    Notices m_notices;
};

}

TEST_F(AppTrackerTest, StartsAndStopsAreToldOnceEachWithTheApplicationsName)
{
    m_workspace.displayNames["com.example.Editor"] = "Text Editor";
    consume(sessions({}));
    consume(sessions({ "s1" }));
    consume(sessions({ "s1" }));
    EXPECT_EQ(m_notices, Notices { "auto-track-start-s1|Started|Text Editor runs" });
    m_notices.clear();

    EXPECT_EQ(m_tracker->applicationOf("s1"), "Text Editor");
    EXPECT_EQ(m_tracker->applicationOf("s2"), std::nullopt);
    m_workspace.displayNames.clear();
    consume(sessions({}));
    EXPECT_EQ(m_tracker->applicationOf("s1"), "Editor") << "a notice of its end may follow";
    m_loop.advance(9.9);
    EXPECT_EQ(posted(), Notices());
    consume(Json { { "auto_track_sessions", Json::array() }, { "energy", 4 } });
    m_loop.advance(0.2);
    EXPECT_EQ(m_notices, Notices { "auto-track-stop-s1|Stopped|Editor ended" });
    m_loop.advance(60);
    EXPECT_EQ(m_notices.size(), 1U);
    EXPECT_EQ(m_loop.timerCount(), 0U);
}

TEST_F(AppTrackerTest, WhatIsToldFollowsFromStatusAfterStatus)
{
    const Json none = sessions({});
    const Json unknown = Json::object();
    const auto off = [](Json status, const char* which) {
        status[which] = false;
        return status;
    };
    const auto endingAt = [this](double wall) {
        auto status = sessions({ "a" });
        status["auto_track_sessions"][0]["budget_end_epoch"] = m_clock.wallSeconds() + wall;
        return status;
    };
    const auto closing = [](const char* session, Json status) {
        status["pending_app_rejections"] = Json::array({ { { "event_id", 1 }, { "reason", "coins_depleted" },
            { "kind", "session_ended" }, { "closing_session_id", session } } });
        return status;
    };
    const auto signing = [](const char* which, Json status) { // After the poll has begun.
        status["sign"] = which;
        return status;
    };
    struct Case {
        const char* what;
        std::vector<Json> statuses; // Two seconds apart.
        Notices atOnce;
        Notices later;
    };
    const Case cases[] = {
        { "open since before the launch", { sessions({ "a" }) }, {}, {} },
        { "the first status knows nothing", { unknown, sessions({ "a" }) }, {}, {} },
        { "an unknown list changes nothing", { sessions({ "a" }), unknown, sessions({ "a" }) }, {}, {} },
        { "nor does it hide a change", { sessions({ "a" }), unknown, none }, {}, { "auto-track-stop-a" } },
        { "an identifier twice", { none, sessions({ "b", "a", "b" }) }, { "auto-track-start-a", "auto-track-start-b" },
            {} },
        { "moved on", { sessions({ "a" }), sessions({ "b" }) }, { "auto-track-start-b" }, {} },
        { "restarted soon", { sessions({ "a" }), none, sessions({ "b" }) }, { "auto-track-start-b" }, {} },
        { "missing for a moment", { sessions({ "a" }), none, sessions({ "a" }) }, {}, {} },
        { "another application's", { sessions({ "a" }), none, sessions({ "b" }, "com.example.Other") },
            { "auto-track-start-b" }, { "auto-track-stop-a" } },
        { "its budget has ended", { endingAt(1), none, none, none }, { "auto-track-stop-a" }, {} },
        { "closed in the same reply", { sessions({ "a" }), closing("a", none) }, {}, {} },
        { "closed a poll before", { sessions({ "a" }), closing("a", sessions({ "a" })), sessions({ "a" }), none }, {},
            {} },
        { "closed a poll after, out of budget", { endingAt(1), none, closing("a", unknown) }, {}, {} },
        { "refused as it began", { none, closing("a", sessions({ "a" })), none }, {}, {} },
        { "another one closed", { sessions({ "a" }), closing("b", none) }, {}, { "auto-track-stop-a" } },
        { "closed, and the notice of that switched off",
            { sessions({ "a" }), off(closing("a", none), "notify_macos_app_blocked") }, {}, { "auto-track-stop-a" } },
        { "begun and signed out", { none, signing("out", sessions({ "a" })), sessions({ "a", "b" }) }, {}, {} },
        { "ended and another user signed in", { sessions({ "a" }), none, signing("in", none), none }, {}, {} },
        { "left open by the user of before",
            { sessions({ "a" }), signing("in", sessions({ "a" })), sessions({ "a" }),
                sessions({ "b" }, "com.example.Other"), none },
            { "auto-track-start-b" }, { "auto-track-stop-b" } },
        { "starts are switched off", { none, off(sessions({ "a" }), "notify_macos_auto_track_start"), none }, {},
            { "auto-track-stop-a" } },
        { "stops are switched off", { none, sessions({ "a" }), off(none, "notify_macos_auto_track_stop") },
            { "auto-track-start-a" }, {} },
        { "stops are switched off while one is held",
            { sessions({ "a" }), none, off(none, "notify_macos_auto_track_stop") }, {}, {} },
    };
    for (const auto& [what, statuses, atOnce, later] : cases) {
        m_generation.signedOut(SignedOut::no);
        AppTracker tracker({ .mainLoop = m_loop,
            .clock = m_clock,
            .workspace = m_workspace,
            .generation = m_generation,
            .copy = [this]() -> const NoticeCopy& { return m_copy; },
            .post =
                [this](const AppTracker::Notice& notice) {
                    if (m_generation.allows(notice.generation))
                        m_notices.push_back(notice.identifier);
                } });
        for (auto status : statuses) {
            tracker.pollBegan();
            if (status.contains("sign"))
                m_generation.signedOut(status["sign"] == "out" ? SignedOut::yes : SignedOut::no);
            tracker.consume(statusWith(status));
            m_loop.advance(2);
            tracker.serviceFailed(DaemonError {});
        }
        EXPECT_EQ(posted(), atOnce) << what;
        m_loop.advance(60);
        EXPECT_EQ(posted(), later) << what;
    }
}

TEST_F(AppTrackerTest, AHeldStopGoesWithTheTracker)
{
    consume(sessions({ "a" }));
    consume(sessions({}));
    m_tracker.reset();
    m_workspace.launch({ "com.example.Editor", 8 });
    m_loop.advance(60);
    EXPECT_EQ(posted(), Notices());
}

TEST_F(AppTrackerTest, TheNewestListsAreKeptWhileTheServiceFails)
{
    EXPECT_TRUE(m_tracker->lists().blockedApps.empty());
    consume({ { "blocked_apps", { "com.example.Old" } } });
    consume({ { "blocked_apps", { "com.example.Game" } }, { "metered_domains", { "video.example" } },
        { "auto_track_apps", { "com.example.Editor" } } });
    m_tracker->serviceFailed(DaemonError {});
    const auto lists = m_tracker->lists();
    consume(Json::object());
    EXPECT_TRUE(m_tracker->lists().blockedApps.empty());
    EXPECT_TRUE(std::ranges::equal(lists.blockedApps, std::vector { "com.example.Game" }));
    EXPECT_TRUE(std::ranges::equal(lists.meteredDomains, std::vector { "video.example" }));
    EXPECT_TRUE(std::ranges::equal(lists.autoTrackApps, std::vector { "com.example.Editor" }));
}

TEST_F(AppTrackerTest, ATrackedApplicationRunsUntilItsLastProcessEnds)
{
    const auto running = [this] {
        m_loop.runPosted();
        return m_tracker->runningAutoTrackApps();
    };
    EXPECT_EQ(running(), Notices());
    consume({ { "auto_track_apps", { "com.example.Mail", "com.example.Editor" } } });
    EXPECT_EQ(running(), Notices { "com.example.Editor" }) << "it ran before";
    m_workspace.launch({ "com.example.Editor", 8 });
    m_workspace.launch({ "com.example.Mail", 9 });
    m_workspace.launch({ "com.example.Other", 10 });
    EXPECT_EQ(running(), (Notices { "com.example.Mail", "com.example.Editor" }));
    m_workspace.quit({ "com.example.Editor", 7 });
    m_workspace.quit({ "com.example.Mail", 9 });
    EXPECT_EQ(running(), Notices { "com.example.Editor" });
    m_workspace.quit({ "com.example.Editor", 8 });
    EXPECT_EQ(running(), Notices());
}

TEST(LastComponent, IsWhatStandsBehindTheLastPoint)
{
    EXPECT_EQ(lastComponent("com.example.Editor"), "Editor");
    EXPECT_EQ(lastComponent("Editor"), "Editor");
    EXPECT_EQ(lastComponent("com.example."), "com.example.");
    EXPECT_EQ(lastComponent(""), "");
}

}
