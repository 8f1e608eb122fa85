#include "posix/ThreadSignals.h"

#include <csignal>
#include <initializer_list>
#include <pthread.h>
#include <utility>

namespace brevanta {

namespace {

extern "C" void doNothing(int) { }

}

void blockAllSignals()
{
    sigset_t signals;
    sigfillset(&signals);
    for (const int raisedByFault : { SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGSYS, SIGTRAP })
        sigdelset(&signals, raisedByFault);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

std::function<void()> queueThread(std::string name)
{
    return [name = std::move(name)] {
        blockAllSignals();
#ifdef __APPLE__
        pthread_setname_np(name.c_str());
#else
        constexpr std::size_t longest = 15;
        const auto begin = name.size() > longest ? name.size() - longest : 0;
        pthread_setname_np(pthread_self(), name.c_str() + begin);
#endif
    };
}

void ignoreBrokenPipeSignal()
{
    // A handler rather than SIG_IGN: execve(2) keeps ignored signals ignored, and a shell pipeline started from here
    // would never notice that its reader has gone.
    struct sigaction action {};
    action.sa_handler = doNothing;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGPIPE, &action, nullptr);
}

}
