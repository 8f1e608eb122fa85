#include "support/CapturedStream.h"

#include "support/GLibPointers.h"

#include <array>
#include <cerrno>
#include <glib-unix.h>
#include <unistd.h>

namespace brevanta::functional {

CapturedStream::~CapturedStream()
{
    m_source.reset();
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

void CapturedStream::capture(int descriptor, const std::string& filePath)
{
    m_descriptor = descriptor;
    if (!filePath.empty())
        m_file.open(filePath, std::ios::app);
    g_unix_set_fd_nonblocking(descriptor, TRUE, nullptr);
    m_source.reset(g_unix_fd_add(
        descriptor, combined(G_IO_IN, G_IO_HUP, G_IO_ERR),
        [](gint readable, GIOCondition condition, gpointer stream) {
            return descriptorIsReadable(readable, condition, stream);
        },
        this));
}

int CapturedStream::descriptorIsReadable(int, int, void* data)
{
    auto& stream = *static_cast<CapturedStream*>(data);
    if (stream.readOnce() || errno == EAGAIN || errno == EINTR)
        return G_SOURCE_CONTINUE;
    stream.m_source.forget();
    return G_SOURCE_REMOVE;
}

bool CapturedStream::readOnce()
{
    std::array<char, 16384> buffer;
    errno = 0;
    const auto size = ::read(m_descriptor, buffer.data(), buffer.size());
    if (size <= 0)
        return false;
    m_text.append(buffer.data(), static_cast<std::size_t>(size));
    m_file.write(buffer.data(), size).flush();
    return true;
}

void CapturedStream::drain()
{
    while (m_descriptor >= 0 && readOnce()) { }
}

bool CapturedStream::awaitText(std::string_view part, Milliseconds within) const
{
    return awaitUntil([&] { return contains(part); }, within);
}

}
