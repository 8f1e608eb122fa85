#include "gtk/UpdaterGtk.h"

#include "fakes/FakePorts.h"
#include "functional/support/TemporaryDirectory.h"
#include "gtk/MainLoopGtk.h"

#include <fstream>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

constexpr AlertResponse relaunchChosen { AlertEnd::button, 0 };
constexpr AlertResponse laterChosen { AlertEnd::button, 1 };

class UpdaterGtkTest : public testing::Test {
protected:
    void start()
    {
        m_updater.start([this](std::function<void()> relaunch) {
            m_held = std::move(relaunch);
            return m_decision;
        });
    }

    void change(const UpdaterStandIn& standIn) const
    {
        EXPECT_TRUE(m_store.changeUpdater([&](const auto&) { return StandInStore::Read<UpdaterStandIn>(standIn); }));
    }
    void offer(const std::string& version) const { change({ .offered = version }); }
    [[nodiscard]] UpdaterStandIn stored() const { return m_store.updater().value_or(UpdaterStandIn {}); }

    [[nodiscard]] bool serveUntil(const std::function<bool()>& condition)
    {
        bool timeIsUp = false;
        const auto guard = m_loop.startTimer(20, TimerRepeat::once, [&] { timeIsUp = true; });
        while (!condition() && !timeIsUp)
            g_main_context_iteration(nullptr, TRUE);
        return condition();
    }
    [[nodiscard]] bool showsAlerts(std::size_t count)
    {
        return serveUntil([&] { return m_alerts.presented.size() == count; });
    }
    void answer(AlertResponse response)
    {
        m_alerts.answer(response);
        while (g_main_context_iteration(nullptr, FALSE)) { }
    }

    functional::TemporaryDirectory m_root;
    StandInStore m_store { m_root.path() };
    MainLoopGtk m_loop;
    FakeAlertPanel m_alerts { m_loop };
    FakeSystemLog m_log;
    int m_relaunches { 0 };
    std::function<void()> m_held;
    RelaunchDecision m_decision { RelaunchDecision::now };
    UpdaterGtk m_updater { { .alerts = m_alerts,
        .log = m_log,
        .root = m_root.path(),
        .version = "1.0",
        .relaunch = [this] { ++m_relaunches; } } };
};

}

TEST_F(UpdaterGtkTest, AnOfferThatIsTakenIsGoneAndRelaunchesOnce)
{
    offer("2.0");
    start();
    ASSERT_TRUE(showsAlerts(1)) << "it was there before the start";
    EXPECT_EQ(m_alerts.presented[0].message, "Brevanta 2.0 is ready");
    EXPECT_EQ(m_alerts.presented[0].buttons, (std::vector<std::string> { "Relaunch", "Later" }));
    EXPECT_EQ(m_relaunches, 0);
    answer(relaunchChosen);
    EXPECT_EQ(m_relaunches, 1);
    EXPECT_EQ(stored(), UpdaterStandIn());
}

TEST_F(UpdaterGtkTest, ARelaunchThatIsPutOffWaitsAndKeepsTheOffer)
{
    m_decision = RelaunchDecision::later;
    start();
    offer("2.0");
    ASSERT_TRUE(showsAlerts(1));
    answer(relaunchChosen);
    EXPECT_EQ(m_relaunches, 0);
    EXPECT_EQ(stored().offered, "2.0");
    m_held();
    EXPECT_EQ(m_relaunches, 1);
    EXPECT_EQ(stored().offered, std::nullopt);
}

TEST_F(UpdaterGtkTest, AnOfferIsMadeOnceUnlessAskedForOrReplaced)
{
    start();
    offer("2.0");
    ASSERT_TRUE(showsAlerts(1));
    answer(laterChosen);
    EXPECT_FALSE(m_held);
    m_updater.setAutomaticChecks(true); // Changes nothing.
    m_updater.checkNow();
    EXPECT_EQ(m_alerts.presented.size(), 2U);
    offer("3.0");
    ASSERT_TRUE(showsAlerts(3));
    EXPECT_EQ(m_alerts.presented[2].message, "Brevanta 3.0 is ready");
    answer(relaunchChosen);
    EXPECT_EQ(m_relaunches, 1) << "the offer of 2.0 is off the screen";
    EXPECT_EQ(stored().offered, std::nullopt);
}

TEST_F(UpdaterGtkTest, WithoutAutomaticChecksNothingIsOfferedUnasked)
{
    change({ .checksAutomatically = false, .offered = "2.0" });
    start();
    EXPECT_FALSE(m_updater.automaticChecks());
    EXPECT_TRUE(m_alerts.presented.empty());
    m_updater.setAutomaticChecks(true);
    EXPECT_TRUE(m_updater.automaticChecks());
    ASSERT_TRUE(showsAlerts(1));
    m_updater.setAutomaticChecks(false);
    EXPECT_EQ(stored(), (UpdaterStandIn { .checksAutomatically = false, .offered = "2.0" }));
}

TEST_F(UpdaterGtkTest, ACheckTellsThatThereIsNothingOrWhyItFailed)
{
    start();
    m_updater.checkNow();
    ASSERT_EQ(m_alerts.presented.size(), 1U);
    EXPECT_EQ(m_alerts.presented[0].message, "Brevanta is up to date");
    answer(laterChosen);
    for (const std::string text :
        { "", "[]", R"({"offered": ""})", R"({"offered": 2})", R"({"automaticChecks": 1})", R"({"more": true})" }) {
        m_alerts.presented.clear();
        std::ofstream(m_store.updaterFile()) << text;
        m_updater.checkNow();
        ASSERT_EQ(m_alerts.presented.size(), 1U) << text;
        EXPECT_EQ(m_alerts.presented[0].message, "The check for updates failed") << text;
        EXPECT_FALSE(m_updater.automaticChecks()) << text;
        m_log.lines.clear();
        m_updater.setAutomaticChecks(true);
        EXPECT_EQ(m_log.lines.size(), 1U) << text;
        answer(laterChosen);
    }
}

}
