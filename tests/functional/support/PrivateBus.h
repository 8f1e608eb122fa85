#pragma once

#include "support/ChildProcess.h"
#include "support/GLibPointers.h"
#include "support/TemporaryDirectory.h"

namespace brevanta::functional {

// A session bus of our own on which nothing is started by being asked for, so that all that answers on it was put
// there.
class PrivateBus {
public:
    [[nodiscard]] static std::expected<std::unique_ptr<PrivateBus>, std::string> start();

    [[nodiscard]] const std::string& address() const { return m_address; }

    // This process's own connection, served by the default main context.
    [[nodiscard]] GDBusConnection* connection() const { return m_connection.get(); }

    [[nodiscard]] bool hasOwner(const std::string& name) const;
    [[nodiscard]] bool awaitOwner(const std::string& name, Milliseconds within) const;
    [[nodiscard]] bool awaitNoOwner(const std::string& name, Milliseconds within) const;

    // Calls a method and waits for the answer, serving the main context meanwhile.
    [[nodiscard]] std::expected<GLibPointer<GVariant>, std::string> call(const std::string& name,
        const std::string& path, const char* interface, const char* method, GVariant* arguments,
        Milliseconds within = Milliseconds(5000)) const;

private:
    PrivateBus() = default;

    TemporaryDirectory m_directory;
    std::unique_ptr<ChildProcess> m_daemon;
    std::string m_address;
    GLibPointer<GDBusConnection> m_connection;
};

}
