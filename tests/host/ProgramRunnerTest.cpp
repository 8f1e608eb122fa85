#include "posix/ProgramRunnerPosix.h"

#include "base/SerialQueue.h"
#include "fakes/FakeMainLoop.h"
#include "functional/support/TemporaryDirectory.h"
#include "posix/ThreadSignals.h"

#include <array>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <poll.h>
#include <sys/stat.h>

namespace brevanta {

namespace {

using Result = std::expected<std::string, ProgramError>;

class ProgramRunnerTest : public testing::Test {
protected:
    Result resultOf(const std::string& program, const std::vector<std::string>& arguments, double seconds = 60)
    {
        std::optional<Result> result;
        runner->run(program, arguments, seconds, [&](const Result& ended) {
            EXPECT_TRUE(mainLoop.isMainThread());
            result = ended;
        });
        EXPECT_FALSE(result) << "not inside the call";
        while (!result)
            mainLoop.awaitPosted();
        return *result;
    }
    Result resultOfScript(const std::string& script, double seconds = 60)
    {
        return resultOf("/bin/sh", { "-c", script }, seconds);
    }

    // A pipe by name, open for reading: once something was written, its end is that of the last process that holds it.
    [[nodiscard]] static FileDescriptor newFifo(const std::filesystem::path& path)
    {
        EXPECT_EQ(::mkfifo(path.c_str(), S_IRUSR | S_IWUSR), 0);
        return FileDescriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK));
    }
    // Up to the end, or until nothing has come for too long.
    static std::string readAll(const FileDescriptor& fifo)
    {
        constexpr int patience = 60000;
        std::string text;
        std::array<char, 64> piece {};
        pollfd waiting { .fd = fifo.get(), .events = POLLIN, .revents = 0 };
        while (::poll(&waiting, 1, patience) > 0) {
            const auto count = ::read(fifo.get(), piece.data(), piece.size());
            if (count <= 0)
                return text;
            text.append(piece.data(), static_cast<std::size_t>(count));
        }
        return text + " and no end";
    }

    functional::TemporaryDirectory folder;
    std::filesystem::path held { folder.path() / "held" };
    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    SerialQueue queue { queueThread("test.programs") };
    std::optional<ProgramRunnerPosix> runner { std::in_place, mainLoop, queue };
};

}

TEST_F(ProgramRunnerTest, TheEndOfAProgramIsToldAsItWas)
{
    const struct {
        const char* script;
        Result expected;
    } cases[] = {
        { "", "" },
        { "printf 'a\\nb\\n'; echo not this >&2", "a\nb\n" },
        { "cat", "" },
        { "sleep 0.05; exec 1>&-; sleep 0.05", "" },
        { "echo output; exit 3", std::unexpected(ProgramError::failed) },
        { "kill -TERM $$", std::unexpected(ProgramError::failed) },
        { "head -c 1048576 /dev/zero", std::string(ProgramRunner::largestOutput, '\0') },
        { "head -c 1048577 /dev/zero", std::unexpected(ProgramError::tooMuchOutput) },
        { "yes", std::unexpected(ProgramError::tooMuchOutput) },
    };
    for (const auto& [script, expected] : cases)
        EXPECT_TRUE(resultOfScript(script) == expected) << script;
}

TEST_F(ProgramRunnerTest, ArgumentsArriveAsTheyAreAndSignalsAreFree)
{
    EXPECT_EQ(resultOf("/usr/bin/printf", { "%s|", "", "a b", "$(id)", "'\"\\", "-u" }), "|a b|$(id)|'\"\\|-u|");
    // The queue's thread blocks its signals; a program that inherited that could not be ended by one.
    EXPECT_EQ(resultOfScript("kill -TERM $$; echo alive"), std::unexpected(ProgramError::failed));
}

TEST_F(ProgramRunnerTest, WhatCannotBeStartedIsToldApart)
{
    using namespace std::string_literals;
    const auto text = folder.path() / "text";
    std::ofstream(text) << "no program";
    for (const auto& program : { "/nonexistent/program"s, folder.path().string(), text.string(), "/bin/sh\0x"s, ""s })
        EXPECT_EQ(resultOf(program, {}), std::unexpected(ProgramError::notStarted)) << program;
    EXPECT_EQ(resultOf("/bin/echo", { "a\0b"s }), std::unexpected(ProgramError::notStarted));
}

TEST_F(ProgramRunnerTest, WhoseTimeIsUpIsKilledWithItsGroup)
{
    const auto fifo = newFifo(held);
    EXPECT_EQ(resultOfScript("trap '' TERM; exec 3>'" + held.string() + "'; echo begun >&3; sleep 600 & wait", 1),
        std::unexpected(ProgramError::outOfTime));
    EXPECT_EQ(readAll(fifo), "begun\n") << "and nobody holds it any more";
    EXPECT_EQ(resultOfScript("echo next"), "next\n");
    for (const double none : { 0.0, -1.0, std::numeric_limits<double>::quiet_NaN() })
        EXPECT_EQ(resultOfScript("sleep 600", none), std::unexpected(ProgramError::outOfTime));
    EXPECT_EQ(resultOfScript("exec 1>&-; sleep 600", 0.05), std::unexpected(ProgramError::outOfTime));
}

TEST_F(ProgramRunnerTest, TheEndOfTheRunnerKillsWhatRunsAndHoldsNobodyUp)
{
    const auto fifo = newFifo(held);
    bool isTold = false;
    for (int run = 0; run < 2; ++run)
        runner->run("/bin/sh", { "-c", "exec 3>'" + held.string() + "'; echo begun >&3; sleep 600" }, 600,
            [&](const Result&) { isTold = true; });
    pollfd waiting { .fd = fifo.get(), .events = POLLIN, .revents = 0 };
    ASSERT_EQ(::poll(&waiting, 1, -1), 1);
    runner.reset();
    EXPECT_TRUE(readAll(fifo).starts_with("begun\n"));
    mainLoop.awaitPosted();
    EXPECT_FALSE(isTold);
}

}
