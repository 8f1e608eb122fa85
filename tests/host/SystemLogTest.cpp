#include "posix/FileDescriptor.h"
#include "posix/StandardErrorLog.h"
#include "posix/SyslogLog.h"
#include "posix/ThreadSignals.h"

#include <array>
#include <gtest/gtest.h>
#include <set>
#include <sys/socket.h>
#include <thread>
#include <vector>

namespace brevanta {

namespace {

// Keeps apart what was written by different calls of write(2), as a datagram each.
class Recorder {
public:
    Recorder()
    {
        std::array<int, 2> pair {};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_DGRAM, 0, pair.data()), 0);
        m_writer.reset(pair[0]);
        m_reader.reset(pair[1]);
    }

    [[nodiscard]] int descriptor() const { return m_writer.get(); }
    void closeReader() { m_reader.reset(); }

    [[nodiscard]] std::string nextWrite() const
    {
        std::array<char, 4096> buffer {};
        const auto size = ::recv(m_reader.get(), buffer.data(), buffer.size(), 0);
        return { buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)) };
    }

    [[nodiscard]] bool isEmpty() const
    {
        char byte = 0;
        return ::recv(m_reader.get(), &byte, 1, MSG_DONTWAIT | MSG_PEEK) < 0;
    }

private:
    FileDescriptor m_writer;
    FileDescriptor m_reader;
};

class StandardErrorGuard {
public:
    explicit StandardErrorGuard(int replacement)
        : m_before(::dup(STDERR_FILENO))
    {
        ::dup2(replacement, STDERR_FILENO);
    }
    ~StandardErrorGuard() { ::dup2(m_before.get(), STDERR_FILENO); }
    StandardErrorGuard(const StandardErrorGuard&) = delete;
    StandardErrorGuard& operator=(const StandardErrorGuard&) = delete;

private:
    FileDescriptor m_before;
};

}

TEST(StandardErrorLogTest, WritesEachLineByOneWriteWithOneLineFeed)
{
    struct Case {
        std::string line;
        std::string written;
    };
    const Case cases[] = {
        { "[MenuBar] polled", "[MenuBar] polled\n" },
        { "", "\n" },
        { "one\ntwo\r\nthree\n", "one two  three \n" },
        { "\x1B[2J cleared", " [2J cleared\n" },
        { "→ ⚠ Brevanta", "→ ⚠ Brevanta\n" },
        { "100 %s %n", "100 %s %n\n" },
    };
    const Recorder recorder;
    StandardErrorLog log(recorder.descriptor());
    for (const auto& [line, written] : cases) {
        log.log(line);
        EXPECT_EQ(recorder.nextWrite(), written);
        log.writeStandardError(line);
        EXPECT_EQ(recorder.nextWrite(), written);
        EXPECT_TRUE(recorder.isEmpty());
    }
}

TEST(StandardErrorLogTest, LinesOfDifferentThreadsAreNeitherMixedNorLost)
{
    constexpr int threadCount = 4;
    constexpr int lineCount = 50;
    const Recorder recorder;
    StandardErrorLog log(recorder.descriptor());
    std::vector<std::thread> threads;
    std::multiset<std::string> expected;
    for (int number = 0; number < threadCount; ++number) {
        const std::string line(500, static_cast<char>('a' + number));
        for (int i = 0; i < lineCount; ++i)
            expected.insert(line + '\n');
        threads.emplace_back([&log, line] {
            for (int i = 0; i < lineCount; ++i)
                log.log(line);
        });
    }
    std::multiset<std::string> written;
    for (int i = 0; i < threadCount * lineCount; ++i)
        written.insert(recorder.nextWrite());
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(written, expected);
}

TEST(StandardErrorLogTest, ALogWithoutAReaderIsSilentlyLost)
{
    ignoreBrokenPipeSignal();
    Recorder recorder;
    recorder.closeReader();
    StandardErrorLog log(recorder.descriptor());
    log.log("nobody reads this");
    StandardErrorLog(-1).log("nor this");
    SUCCEED();
}

TEST(SyslogLogTest, SendsWatchdogLinesToStandardErrorAndLogLinesElsewhere)
{
    const Recorder recorder;
    {
        const StandardErrorGuard guard(recorder.descriptor());
        SyslogLog log;
        log.log("[MenuBar] for the system's log");
        log.writeStandardError("auth_token_invalid: signalled");
    }
    EXPECT_EQ(recorder.nextWrite(), "auth_token_invalid: signalled\n");
    EXPECT_TRUE(recorder.isEmpty());
}

}
