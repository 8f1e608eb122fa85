#include "daemon/ScriptedServer.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace brevanta {

std::string ScriptedServer::Peer::readRequest() const
{
    std::string request;
    char byte = 0;
    while (::recv(m_descriptor, &byte, 1, 0) == 1) {
        request.push_back(byte);
        if (byte == '\n')
            break;
    }
    return request;
}

bool ScriptedServer::Peer::write(std::string_view bytes) const
{
    while (!bytes.empty()) {
        const auto written = ::send(m_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void ScriptedServer::Peer::waitForClose() const
{
    char byte = 0;
    while (::recv(m_descriptor, &byte, 1, 0) > 0) { }
}

ScriptedServer::ScriptedServer(std::function<void(const Peer&)> serve)
{
    char folder[] = "/tmp/brevanta-server-XXXXXX";
    if (!::mkdtemp(folder))
        throw std::runtime_error("mkdtemp failed");
    m_folder = folder;
    m_path = m_folder + "/socket";
    m_listener = FileDescriptor(::socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    m_path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    if (::bind(m_listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0
        || ::listen(m_listener.get(), 8) != 0)
        throw std::runtime_error("the test's server cannot listen");
    m_thread = std::thread([this, serve = std::move(serve)] { run(serve); });
}

ScriptedServer::~ScriptedServer()
{
    ::shutdown(m_listener.get(), SHUT_RDWR); // Ends the accept that waits.
    m_thread.join();
    std::filesystem::remove_all(m_folder);
}

void ScriptedServer::run(const std::function<void(const Peer&)>& serve) const
{
    while (true) {
        const FileDescriptor connection(::accept(m_listener.get(), nullptr, nullptr));
        if (connection.get() < 0)
            return;
        serve(Peer(connection.get()));
    }
}

}
