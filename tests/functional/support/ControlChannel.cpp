#include "support/ControlChannel.h"

#include "support/CapturedStream.h"

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace brevanta::functional {

// A connected descriptor, or -1.
static int connectTo(const std::string& path)
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return -1;
    std::memcpy(address.sun_path, path.c_str(), path.size());
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor >= 0 && ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return descriptor;
    if (descriptor >= 0)
        ::close(descriptor);
    return -1;
}

std::expected<std::string, std::string> sendCommand(
    const std::string& socketPath, const std::string& line, Milliseconds within)
{
    const int descriptor = connectTo(socketPath);
    if (descriptor < 0)
        return std::unexpected("nobody takes commands at " + socketPath);
    CapturedStream answer;
    answer.capture(descriptor);
    const auto request = line + "\n";
    if (::send(descriptor, request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size()))
        return std::unexpected("the command could not be sent: " + line);
    if (!answer.awaitText("\n", within))
        return std::unexpected("no answer to: " + line);
    const auto text = answer.text().substr(0, answer.text().find('\n'));
    if (text == "ok")
        return std::string();
    if (text.starts_with("ok "))
        return text.substr(3);
    return std::unexpected(line + ": " + text);
}

}
