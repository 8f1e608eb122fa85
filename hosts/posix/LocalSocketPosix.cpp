#include "posix/LocalSocketPosix.h"

#include "posix/FileDescriptor.h"

#include <algorithm>
#include <fcntl.h>
#include <mutex>
#include <optional>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <vector>

namespace brevanta {

// The sockets that `interrupt` has to reach. A socket is closed under the same mutex, so that a number which the system
// has already given to another file is never shut down.
class LocalSocketPosix::OpenSockets {
public:
    [[nodiscard]] bool add(int descriptor)
    {
        const std::lock_guard lock(m_mutex);
        if (m_interrupted)
            return false;
        m_descriptors.push_back(descriptor);
        return true;
    }

    void close(FileDescriptor& socket)
    {
        const std::lock_guard lock(m_mutex);
        std::erase(m_descriptors, socket.get());
        socket.reset();
    }

    void interrupt()
    {
        const std::lock_guard lock(m_mutex);
        m_interrupted = true;
        for (const int descriptor : m_descriptors)
            ::shutdown(descriptor, SHUT_RDWR);
    }

private:
    std::mutex m_mutex;
    std::vector<int> m_descriptors;
    bool m_interrupted { false };
};

namespace {

constexpr std::size_t longestPath = 103; // What macOS has room for beside the NUL: unix(4).
static_assert(longestPath < sizeof(sockaddr_un::sun_path));

class LocalConnectionPosix final : public LocalConnection {
public:
    LocalConnectionPosix(FileDescriptor socket, std::shared_ptr<LocalSocketPosix::OpenSockets> openSockets)
        : m_socket(std::move(socket))
        , m_openSockets(std::move(openSockets))
    {
    }

    ~LocalConnectionPosix() override { m_openSockets->close(m_socket); }

    LocalConnectionPosix(const LocalConnectionPosix&) = delete;
    LocalConnectionPosix& operator=(const LocalConnectionPosix&) = delete;

    [[nodiscard]] std::ptrdiff_t send(std::span<const char> bytes) override
    {
        return ::send(m_socket.get(), bytes.data(), bytes.size(), 0);
    }

    [[nodiscard]] std::ptrdiff_t receive(std::span<char> buffer) override
    {
        return ::recv(m_socket.get(), buffer.data(), buffer.size(), 0);
    }

private:
    FileDescriptor m_socket;
    std::shared_ptr<LocalSocketPosix::OpenSockets> m_openSockets;
};

std::optional<sockaddr_un> addressOf(const std::string& path)
{
    // Linux reads an empty path as a name outside of the file system: unix(7).
    if (path.empty() || path.size() > longestPath || path.contains('\0'))
        return std::nullopt;
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::ranges::copy(path, address.sun_path);
    return address;
}

// Linux lets connect(2) wait without limit while the queue of a listener that accepts nothing is full; macOS refuses
// at once. Not blocking for the one call makes Linux refuse too, with EAGAIN.
bool connectWithoutWaiting(int socket, const sockaddr_un& address)
{
    const int flags = ::fcntl(socket, F_GETFL);
    if (flags < 0 || ::fcntl(socket, F_SETFL, flags | O_NONBLOCK) < 0)
        return false;
    const bool connected = !::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    return connected && ::fcntl(socket, F_SETFL, flags) == 0;
}

void limitWaiting(int socket, int seconds)
{
    timeval limit {};
    limit.tv_sec = seconds;
    // A system that refuses the limits still exchanges; nothing better could be done about it here.
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
}

}

LocalSocketPosix::LocalSocketPosix()
    : m_openSockets(std::make_shared<OpenSockets>())
{
}

LocalSocketPosix::~LocalSocketPosix() = default;

std::unique_ptr<LocalConnection> LocalSocketPosix::connect(const std::string& path, int timeoutSeconds)
{
    const auto address = addressOf(path);
    if (!address)
        return nullptr;
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    if (!socket || ::fcntl(socket.get(), F_SETFD, FD_CLOEXEC) < 0)
        return nullptr;
    if (!connectWithoutWaiting(socket.get(), *address))
        return nullptr;
    limitWaiting(socket.get(), timeoutSeconds);
    if (!m_openSockets->add(socket.get()))
        return nullptr;
    return std::make_unique<LocalConnectionPosix>(std::move(socket), m_openSockets);
}

void LocalSocketPosix::interrupt() { m_openSockets->interrupt(); }

}
