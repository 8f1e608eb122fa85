#pragma once

#include "gtk/GObjectPtr.h"

#include <utility>
#include <vector>

namespace brevanta {

// Signal handlers that end with this object. Each keeps the object that it is connected to alive.
class SignalConnections {
public:
    SignalConnections() = default;
    ~SignalConnections() { disconnectAll(); }
    SignalConnections(const SignalConnections&) = delete;
    SignalConnections& operator=(const SignalConnections&) = delete;

    // `callback` has the C signature of the signal, with `data` as its last parameter.
    void connect(gpointer object, const char* signal, GCallback callback, gpointer data)
    {
        const auto handler = g_signal_connect_data(object, signal, callback, data, nullptr, GConnectFlags {});
        m_connections.push_back({ share(G_OBJECT(object)), handler });
    }

    void disconnectAll()
    {
        for (const auto& connection : std::exchange(m_connections, {}))
            g_signal_handler_disconnect(connection.object.get(), connection.handler);
    }

private:
    struct Connection {
        GObjectPtr<GObject> object;
        gulong handler { 0 };
    };

    std::vector<Connection> m_connections;
};

}
