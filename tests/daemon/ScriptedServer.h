#pragma once

#include "posix/FileDescriptor.h"

#include <functional>
#include <string>
#include <thread>

namespace brevanta {

// A Unix-domain server that treats one connection after another as the test says, on a thread of its own. Its socket
// lies in a temporary folder that goes with it.
class ScriptedServer {
public:
    // One accepted connection, on the server's thread.
    class Peer {
    public:
        explicit Peer(int descriptor)
            : m_descriptor(descriptor)
        {
        }
        // The request up to its line feed, or what came before the client closed.
        [[nodiscard]] std::string readRequest() const;
        // False when the client has gone.
        bool write(std::string_view bytes) const;
        // Returns once the client has closed its end.
        void waitForClose() const;

    private:
        int m_descriptor;
    };

    explicit ScriptedServer(std::function<void(const Peer&)> serve);
    ~ScriptedServer();

    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    [[nodiscard]] const std::string& path() const { return m_path; }

private:
    void run(const std::function<void(const Peer&)>& serve) const;

    std::string m_folder;
    std::string m_path;
    FileDescriptor m_listener;
    std::thread m_thread;
};

}
