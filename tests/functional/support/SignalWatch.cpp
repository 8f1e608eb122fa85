#include "support/SignalWatch.h"

namespace brevanta::functional {

SignalWatch::SignalWatch(const PrivateBus& bus, const char* interface, const std::string& path)
    : m_connection(bus.connection())
{
    m_subscription = g_dbus_connection_signal_subscribe(
        m_connection, nullptr, interface, nullptr, path.c_str(), nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*, gpointer hasNews) {
            *static_cast<bool*>(hasNews) = true;
        },
        &m_hasNews, nullptr);
}

SignalWatch::~SignalWatch() { g_dbus_connection_signal_unsubscribe(m_connection, m_subscription); }

bool SignalWatch::awaitCondition(const std::function<bool()>& isReached, Milliseconds within)
{
    m_hasNews = true;
    return awaitUntil(
        [&] {
            // Asking serves the main context too, so that the next signal may come while the answer is looked at.
            while (m_hasNews) {
                m_hasNews = false;
                if (isReached())
                    return true;
            }
            return false;
        },
        within);
}

}
