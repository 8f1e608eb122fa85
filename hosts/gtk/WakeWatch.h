#pragma once

#include "base/LifeToken.h"
#include "gtk/GObjectPtr.h"

#include <functional>

namespace brevanta {

// Tells when the machine has come out of its sleep: PrepareForSleep(false) of org.freedesktop.login1.Manager on the
// system bus (org.freedesktop.login1(5)). Connecting happens in the background; without a system bus, and without that
// service on it, nothing is ever told. Main thread only.
class WakeWatch {
public:
    // `onWake` is called by the main loop.
    explicit WakeWatch(std::function<void()> onWake);
    ~WakeWatch();
    WakeWatch(const WakeWatch&) = delete;
    WakeWatch& operator=(const WakeWatch&) = delete;

private:
    using OnConnected = std::function<void(GObjectPtr<GDBusConnection>&)>;

    void connect();
    static void connected(GObject*, GAsyncResult* result, gpointer onConnected);
    static void signalled(GDBusConnection*, const char* sender, const char* path, const char* interface,
        const char* signal, GVariant* arguments, gpointer self);

    std::function<void()> m_onWake;
    GObjectPtr<GDBusConnection> m_bus;
    unsigned m_subscription { 0 };
    LifeToken m_life;
};

}
