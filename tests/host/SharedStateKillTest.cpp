#include "functional/support/TemporaryDirectory.h"
#include "host/SharedStateRecords.h"
#include "posix/FileDescriptor.h"
#include "support/FileContents.h"

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <spawn.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <sys/wait.h>

extern char** environ; // environ(7)

namespace brevanta {

namespace {

using Clock = std::chrono::steady_clock;

// A process that writes the shared state again and again; killed at the latest when this ends.
class WritingProcess {
public:
    explicit WritingProcess(const std::filesystem::path& folder)
    {
        std::array<int, 2> ends {};
        if (::pipe(ends.data()))
            return;
        m_output.reset(ends[0]);
        const FileDescriptor input(ends[1]);
        for (const int end : ends)
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
        posix_spawn_file_actions_t actions {};
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, input.get(), STDOUT_FILENO);
        std::string program = SHARED_STATE_PROBE;
        std::string argument = folder.string();
        const std::array<char*, 3> arguments { program.data(), argument.data(), nullptr };
        if (::posix_spawn(&m_process, program.c_str(), &actions, nullptr, arguments.data(), environ))
            m_process = -1;
        ::posix_spawn_file_actions_destroy(&actions);
    }
    ~WritingProcess() { kill(); }
    WritingProcess(const WritingProcess&) = delete;
    WritingProcess& operator=(const WritingProcess&) = delete;

    // Waits until it has ended a write.
    [[nodiscard]] bool awaitWrite()
    {
        char byte = 0;
        return ::read(m_output.get(), &byte, 1) == 1;
    }

    // Lets it go on for so long. Waits rather than spins: on a busy machine the process would not get on meanwhile.
    void letWriteFor(std::chrono::microseconds duration)
    {
        const auto end = Clock::now() + duration;
        for (auto left = duration; left.count() > 0;
            left = std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now())) {
            fd_set readable;
            FD_ZERO(&readable);
            FD_SET(m_output.get(), &readable);
            timeval timeout {};
            timeout.tv_usec = static_cast<decltype(timeout.tv_usec)>(left.count());
            if (::select(m_output.get() + 1, &readable, nullptr, nullptr, &timeout) > 0 && !awaitWrite())
                return;
        }
    }

    void kill()
    {
        if (m_process <= 0)
            return;
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        m_process = -1;
    }

private:
    FileDescriptor m_output;
    pid_t m_process { -1 };
};

}

TEST(SharedStateKill, AWriterThatIsKilledAtAnyMomentLeavesAWholeFileAndAtMostOnePrivateLeftover)
{
    constexpr int kills = 300;
    const functional::TemporaryDirectory folder;
    const auto file = folder.path() / "block_state.json";
    const auto small = fileContentsOf(*smallStatus());
    const auto large = fileContentsOf(*largeStatus());
    std::minstd_rand random(5);
    std::uniform_int_distribution<int> writesBefore(1, 2);
    std::uniform_int_distribution<int> microseconds(0, 3000);
    int leftovers = 0;
    int smallOnes = 0;

    for (int round = 0; round < kills; ++round) {
        WritingProcess process(folder.path());
        for (int writes = writesBefore(random); writes > 0; --writes)
            ASSERT_TRUE(process.awaitWrite());
        const auto whileWriting = contentsOf(file);
        ASSERT_TRUE(whileWriting == small || whileWriting == large) << whileWriting.size() << " bytes";
        process.letWriteFor(std::chrono::microseconds(microseconds(random)));
        process.kill();

        const auto contents = contentsOf(file);
        ASSERT_TRUE(contents == small || contents == large) << contents.size() << " bytes";
        smallOnes += contents == small ? 1 : 0;
        struct stat status {};
        ASSERT_EQ(::lstat(file.c_str(), &status), 0);
        ASSERT_EQ(status.st_mode, S_IFREG | 0600U);
        int leftoversOfRound = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            if (entry.path() == file)
                continue;
            ASSERT_TRUE(entry.path().filename().string().starts_with(".block_state.json.")) << entry.path();
            ASSERT_EQ(::lstat(entry.path().c_str(), &status), 0);
            ASSERT_EQ(status.st_mode, S_IFREG | 0600U);
            std::filesystem::remove(entry.path());
            ++leftoversOfRound;
        }
        ASSERT_LE(leftoversOfRound, 1);
        leftovers += leftoversOfRound;
    }
    // Else the kills came at no interesting moment.
    EXPECT_GT(leftovers, 0);
    EXPECT_GT(smallOnes, 0);
    EXPECT_LT(smallOnes, kills);
    RecordProperty("leftovers", leftovers);
}

}
