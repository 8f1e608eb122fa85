#include "gtk/WakeWatch.h"
#include "host/ScriptedNotificationService.h"

#include <gtest/gtest.h>
#include <optional>

namespace brevanta {

namespace {

constexpr auto managerInterface = "org.freedesktop.login1.Manager";
constexpr auto managerPath = "/org/freedesktop/login1";

// A system bus of the test's own, with the name of the login manager taken.
class WakeWatchTest : public testing::Test {
protected:
    WakeWatchTest()
    {
        m_bus.emplace();
        g_setenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus->address().c_str(), TRUE);
        m_manager = m_bus->connect();
        const GLibPtr<GVariant> reply(
            g_dbus_connection_call_sync(m_manager.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                "org.freedesktop.DBus", "RequestName", g_variant_new("(su)", "org.freedesktop.login1", 0U), nullptr,
                G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        EXPECT_TRUE(reply);
    }

    // The connection to the system bus is the whole process's: the next test's bus is found only when it has gone.
    void TearDown() override
    {
        if (auto* shared = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr)) {
            g_dbus_connection_set_exit_on_close(shared, FALSE);
            auto** const place = reinterpret_cast<gpointer*>(&shared);
            g_object_add_weak_pointer(G_OBJECT(shared), place);
            g_object_unref(shared);
            EXPECT_TRUE(serveAndAsk([&] { return !shared; }));
        }
        g_unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    }

    // For what nobody announces: asks again and again.
    [[nodiscard]] static bool serveAndAsk(const std::function<bool()>& condition)
    {
        const auto ticker = g_timeout_add(20, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
        const bool holds = serveUntil(condition);
        g_source_remove(ticker);
        return holds;
    }

    void announce(GVariant* arguments, const char* path = managerPath, const char* signal = "PrepareForSleep") const
    {
        g_dbus_connection_emit_signal(m_manager.get(), nullptr, path, managerInterface, signal, arguments, nullptr);
    }

    // Nothing tells when the watch has begun to hear, so it is woken again and again until it does.
    [[nodiscard]] bool wakeUntilHeard() const
    {
        const int before = m_wakes;
        return serveAndAsk([this, before] {
            announce(g_variant_new("(b)", FALSE));
            return m_wakes > before;
        });
    }

    // The bus keeps the order, so when the answer has come all signals before it have.
    void hearTheBus() const
    {
        const GObjectPtr<GDBusConnection> shared(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
        ASSERT_TRUE(shared);
        for (auto* const connection : { m_manager.get(), shared.get() }) {
            const GLibPtr<GVariant> reply(g_dbus_connection_call_sync(connection, "org.freedesktop.DBus", "/",
                "org.freedesktop.DBus.Peer", "Ping", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
            EXPECT_TRUE(reply);
        }
        while (g_main_context_iteration(nullptr, FALSE)) { }
    }

    std::optional<TestBus> m_bus;
    GObjectPtr<GDBusConnection> m_manager;
    int m_wakes { 0 };
};

}

TEST_F(WakeWatchTest, TellsOfEveryWakeAndOfNothingElse)
{
    std::optional<WakeWatch> watch;
    watch.emplace([this] { ++m_wakes; });
    ASSERT_TRUE(wakeUntilHeard());
    hearTheBus();
    m_wakes = 0;
    announce(g_variant_new("(b)", TRUE));
    announce(g_variant_new("(s)", "false"));
    announce(g_variant_new("(bb)", FALSE, FALSE));
    announce(g_variant_new("(b)", FALSE), "/elsewhere");
    announce(g_variant_new("(b)", FALSE), managerPath, "PrepareForShutdown");
    hearTheBus();
    EXPECT_EQ(m_wakes, 0);
    announce(g_variant_new("(b)", FALSE));
    announce(g_variant_new("(b)", TRUE));
    announce(g_variant_new("(b)", FALSE));
    hearTheBus();
    EXPECT_EQ(m_wakes, 2);

    watch.reset();
    announce(g_variant_new("(b)", FALSE));
    hearTheBus();
    EXPECT_EQ(m_wakes, 2);
}

TEST_F(WakeWatchTest, AWatchThatGoesWhileItConnectsIsNeverToldAnything)
{
    {
        const WakeWatch shortLived([this] { ++m_wakes; });
    }
    hearTheBus();
    announce(g_variant_new("(b)", FALSE));
    hearTheBus();
    EXPECT_EQ(m_wakes, 0);
}

TEST_F(WakeWatchTest, TheEndOfTheBusDoesNotEndTheProcess)
{
    const WakeWatch watch([this] { ++m_wakes; });
    ASSERT_TRUE(wakeUntilHeard());
    const GObjectPtr<GDBusConnection> shared(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
    ASSERT_TRUE(shared);
    g_dbus_connection_set_exit_on_close(m_manager.get(), FALSE);
    bool isClosed = false;
    g_signal_connect(shared.get(), "closed",
        G_CALLBACK(+[](GDBusConnection*, gboolean, GError*, gpointer closed) { *static_cast<bool*>(closed) = true; }),
        &isClosed);
    m_bus.reset();
    EXPECT_TRUE(serveUntil([&] { return isClosed; }));
}

TEST_F(WakeWatchTest, WithoutASystemBusNothingIsToldAndNobodyWaits)
{
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", TRUE);
    const WakeWatch watch([this] { ++m_wakes; });
    // As long as the attempt goes on, everybody in the process is given its connection.
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus->address().c_str(), TRUE);
    EXPECT_TRUE(serveAndAsk([] {
        const GObjectPtr<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
        return bus != nullptr;
    }));
    announce(g_variant_new("(b)", FALSE));
    hearTheBus();
    EXPECT_EQ(m_wakes, 0);
}

}
