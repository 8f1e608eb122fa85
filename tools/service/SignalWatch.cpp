#include "service/SignalWatch.h"

#include "service/ListeningSocket.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace brevanta::service {

// A signal handler can reach nothing but what is global.
static volatile std::sig_atomic_t s_writeEnd = -1;

static void noteSignal(int)
{
    const auto savedError = errno;
    const char byte = 1;
    (void)!::write(s_writeEnd, &byte, 1);
    errno = savedError;
}

SignalWatch::SignalWatch()
{
    std::array<int, 2> ends {};
    if (::pipe(ends.data()))
        return;
    m_readEnd = FileDescriptor(ends[0]);
    m_writeEnd = FileDescriptor(ends[1]);
    if (!makeNonBlocking(ends[0]) || !makeNonBlocking(ends[1]))
        return;
    s_writeEnd = ends[1];
    std::signal(SIGTERM, noteSignal);
    std::signal(SIGINT, noteSignal);
}

SignalWatch::~SignalWatch()
{
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGINT, SIG_DFL);
    s_writeEnd = -1;
}

}
