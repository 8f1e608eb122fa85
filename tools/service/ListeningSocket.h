#pragma once

#include "service/FileDescriptor.h"
#include "service/ServiceError.h"

#include <expected>
#include <optional>
#include <string>
#include <sys/types.h>

namespace brevanta::service {

// A listening Unix-domain socket that owns its file: the file goes when the object goes, unless somebody else has put
// another one in its place meanwhile.
class ListeningSocket {
public:
    // Replaces a socket file that nobody listens on any more (a killed run leaves one); fails when somebody does, or
    // when the path holds anything but a socket.
    [[nodiscard]] static std::expected<ListeningSocket, ServiceError> open(const std::string& path);

    ListeningSocket(ListeningSocket&&) = default;
    ListeningSocket& operator=(ListeningSocket&&) = delete;
    ~ListeningSocket();

    [[nodiscard]] int descriptor() const { return m_descriptor.get(); }

    // The next waiting connection, non-blocking and closed on exec; nothing when there is none.
    [[nodiscard]] std::optional<FileDescriptor> accept() const;

private:
    ListeningSocket(FileDescriptor, std::string path, dev_t, ino_t);

    FileDescriptor m_descriptor;
    std::string m_path;
    dev_t m_device;
    ino_t m_inode;
};

// Makes reads and writes return instead of waiting, and keeps the descriptor out of child processes.
[[nodiscard]] bool makeNonBlocking(int descriptor);

}
