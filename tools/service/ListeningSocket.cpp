#include "service/ListeningSocket.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace brevanta::service {

static constexpr int connectionBacklog = 64;

static ServiceError systemError(const std::string& path, const char* what)
{
    return { path + ": " + what + ": " + std::strerror(errno) };
}

static std::expected<sockaddr_un, ServiceError> addressOf(const std::string& path)
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.find('\0') != std::string::npos)
        return fail("a socket path must not be empty");
    if (path.size() >= sizeof(address.sun_path))
        return fail(path + ": a socket path has at most " + std::to_string(sizeof(address.sun_path) - 1) + " bytes");
    std::memcpy(address.sun_path, path.data(), path.size());
    return address;
}

static bool isAnswered(const sockaddr_un& address)
{
    FileDescriptor probe(::socket(AF_UNIX, SOCK_STREAM, 0));
    if (!probe.isOpen() || !makeNonBlocking(probe.get()))
        return false;
    // A full backlog reads as "try again": somebody does listen there.
    return !::connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) || errno == EAGAIN
        || errno == EINPROGRESS;
}

static std::expected<void, ServiceError> clearStaleSocket(const std::string& path, const sockaddr_un& address)
{
    struct stat status {};
    if (::lstat(path.c_str(), &status)) {
        if (errno == ENOENT)
            return {};
        return std::unexpected(systemError(path, "cannot be examined"));
    }
    if (!S_ISSOCK(status.st_mode))
        return fail(path + ": exists and is not a socket");
    if (isAnswered(address))
        return fail(path + ": another service is listening there");
    if (::unlink(path.c_str()) && errno != ENOENT)
        return std::unexpected(systemError(path, "cannot be replaced"));
    return {};
}

bool makeNonBlocking(int descriptor)
{
    const int flags = ::fcntl(descriptor, F_GETFL);
    return flags >= 0 && ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) >= 0
        && ::fcntl(descriptor, F_SETFD, FD_CLOEXEC) >= 0;
}

std::expected<ListeningSocket, ServiceError> ListeningSocket::open(const std::string& path)
{
    const auto address = addressOf(path);
    if (!address)
        return std::unexpected(address.error());
    if (const auto cleared = clearStaleSocket(path, *address); !cleared)
        return std::unexpected(cleared.error());

    FileDescriptor descriptor(::socket(AF_UNIX, SOCK_STREAM, 0));
    if (!descriptor.isOpen() || !makeNonBlocking(descriptor.get()))
        return std::unexpected(systemError(path, "no socket"));
    if (::bind(descriptor.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof(*address)))
        return std::unexpected(systemError(path, "cannot be bound"));
    struct stat status {};
    if (::lstat(path.c_str(), &status))
        return std::unexpected(systemError(path, "cannot be examined"));
    ListeningSocket socket(std::move(descriptor), path, status.st_dev, status.st_ino);
    if (::listen(socket.descriptor(), connectionBacklog))
        return std::unexpected(systemError(path, "cannot be listened on"));
    return socket;
}

ListeningSocket::ListeningSocket(FileDescriptor descriptor, std::string path, dev_t device, ino_t inode)
    : m_descriptor(std::move(descriptor))
    , m_path(std::move(path))
    , m_device(device)
    , m_inode(inode)
{
}

ListeningSocket::~ListeningSocket()
{
    if (!m_descriptor.isOpen())
        return;
    struct stat status {};
    if (!::lstat(m_path.c_str(), &status) && status.st_dev == m_device && status.st_ino == m_inode)
        ::unlink(m_path.c_str());
}

std::optional<FileDescriptor> ListeningSocket::accept() const
{
    FileDescriptor connection(::accept(m_descriptor.get(), nullptr, nullptr));
    if (!connection.isOpen() || !makeNonBlocking(connection.get()))
        return std::nullopt;
    return connection;
}

}
