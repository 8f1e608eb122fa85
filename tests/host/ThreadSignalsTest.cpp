#include "posix/ThreadSignals.h"
#include "posix/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>

namespace brevanta {

TEST(ThreadSignalsTest, AQueuesThreadLeavesSignalsToTheOthersButKeepsItsOwnFaults)
{
    sigset_t blocked;
    sigemptyset(&blocked);
    std::thread([&blocked] {
        blockAllSignals();
        pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    }).join();
    for (const int signal : { SIGHUP, SIGINT, SIGTERM, SIGCHLD, SIGPIPE, SIGALRM, SIGUSR1, SIGWINCH })
        EXPECT_EQ(sigismember(&blocked, signal), 1) << signal;
    for (const int signal : { SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT })
        EXPECT_EQ(sigismember(&blocked, signal), 0) << signal;

    sigset_t ours;
    pthread_sigmask(SIG_BLOCK, nullptr, &ours);
    EXPECT_EQ(sigismember(&ours, SIGTERM), 0) << "the calling thread's own mask alone is changed";
}

TEST(ThreadSignalsTest, WritingWithoutAReaderIsAnErrorAndNotTheEnd)
{
    ignoreBrokenPipeSignal();
    std::array<int, 2> ends {};
    ASSERT_EQ(::pipe(ends.data()), 0);
    FileDescriptor(ends[0]).reset();
    const FileDescriptor writer(ends[1]);
    EXPECT_EQ(::write(writer.get(), "x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
}

TEST(ThreadSignalsTest, ProgramsStartedLaterEndByABrokenPipeAsUsual)
{
    ignoreBrokenPipeSignal();
    const auto child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::execl("/bin/sh", "sh", "-c", "kill -PIPE $$; exit 0", nullptr);
        ::_exit(1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE) << status;
}

}
