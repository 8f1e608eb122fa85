#include "posix/AtomicFile.h"
#include "functional/support/TemporaryDirectory.h"
#include "posix/FileDescriptor.h"
#include "support/FileContents.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <vector>

namespace brevanta {

namespace {

using Step = FileWriteError::Step;

std::vector<std::string> namesIn(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    return names;
}

mode_t modeOf(const std::filesystem::path& path)
{
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

class UmaskGuard {
public:
    explicit UmaskGuard(mode_t mask)
        : m_before(::umask(mask))
    {
    }
    ~UmaskGuard() { ::umask(m_before); }
    UmaskGuard(const UmaskGuard&) = delete;
    UmaskGuard& operator=(const UmaskGuard&) = delete;

private:
    mode_t m_before;
};

class AtomicFileTest : public testing::Test {
protected:
    functional::TemporaryDirectory m_folder;
    std::filesystem::path m_file { m_folder.path() / "settings" };
};

}

TEST_F(AtomicFileTest, WritesEveryByteAndLeavesNothingBeside)
{
    const std::string contents("first\0second\n\xFF", 14);
    ASSERT_TRUE(writeFileAtomically(m_file, contents, 0600));
    EXPECT_EQ(contentsOf(m_file), contents);
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string> { "settings" });
}

TEST_F(AtomicFileTest, ReplacesAFileWithAnotherOneSoThatOpenReadersKeepTheOldOne)
{
    ASSERT_TRUE(writeFileAtomically(m_file, "old", 0600));
    std::ifstream reader(m_file);
    ASSERT_TRUE(writeFileAtomically(m_file, "", 0600));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "old");
    EXPECT_EQ(contentsOf(m_file), "");
}

TEST_F(AtomicFileTest, GivesTheModeThatWasAskedForWhateverTheUmaskAndTheOldFile)
{
    for (const mode_t mask : { mode_t { 0 }, mode_t { 0022 }, mode_t { 0077 } }) {
        for (const mode_t mode : { mode_t { 0600 }, mode_t { 0644 }, mode_t { 0755 } }) {
            const UmaskGuard guard(mask);
            ASSERT_TRUE(writeFileAtomically(m_file, "x", mode));
            EXPECT_EQ(modeOf(m_file), mode) << "umask " << mask;
        }
    }
}

TEST_F(AtomicFileTest, TellsAMissingFolder)
{
    const auto written = writeFileAtomically(m_folder.path() / "missing" / "settings", "x", 0600);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error(), (FileWriteError { Step::create, ENOENT }));
    EXPECT_EQ(describe(written.error()), "could not create: No such file or directory");
}

TEST_F(AtomicFileTest, ReplacesNoFolderAndRemovesItsTemporaryFile)
{
    std::filesystem::create_directories(m_file / "child");
    const auto written = writeFileAtomically(m_file, "x", 0600);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().step, Step::replace);
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string> { "settings" });
    EXPECT_TRUE(std::filesystem::is_directory(m_file / "child"));
}

TEST_F(AtomicFileTest, ReplacesASymbolicLinkAndNotWhatItPointsTo)
{
    const auto target = m_folder.path() / "target";
    ASSERT_TRUE(writeFileAtomically(target, "kept", 0600));
    std::filesystem::create_symlink(target, m_file);
    ASSERT_TRUE(writeFileAtomically(m_file, "new", 0600));
    EXPECT_EQ(contentsOf(target), "kept");
    EXPECT_FALSE(std::filesystem::is_symlink(m_file));
}

TEST_F(AtomicFileTest, LeavesTheOldFileAloneWhenThereIsNoRoomForTheNewOne)
{
    ASSERT_TRUE(writeFileAtomically(m_file, "old", 0600));
    const std::string large(100'000, 'x');
    const auto child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit { 4096, 4096 };
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const auto written = writeFileAtomically(m_file, large, 0600);
        ::_exit(!written && written.error() == FileWriteError { Step::write, EFBIG } ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(contentsOf(m_file), "old");
    EXPECT_EQ(namesIn(m_folder.path()), std::vector<std::string> { "settings" });
}

TEST_F(AtomicFileTest, AnotherWritersFileStopsNobodyAndIsRemovedOnceItIsOld)
{
    const auto elsewhere = m_folder.path() / "elsewhere";
    ASSERT_TRUE(writeFileAtomically(elsewhere, "kept", 0644));
    const auto leave = [this](const char* name, std::chrono::seconds age) {
        const auto path = m_folder.path() / name;
        std::ofstream(path) << "half a fi";
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() - age);
        return path;
    };
    const std::chrono::minutes old { 2 };
    leave(".settings.7-1.tmp", old);
    leave(".other.7-1.tmp", old);
    std::filesystem::create_symlink(elsewhere, m_folder.path() / ".settings.link.tmp");
    const FileDescriptor held(::open(leave(".settings.tmp", {}).c_str(), O_WRONLY));
    ASSERT_EQ(::flock(held.get(), LOCK_EX), 0) << "a stopped process may hold it";
    for (int write = 0; write < 16; ++write)
        ASSERT_TRUE(writeFileAtomically(m_file, "new", 0600));
    EXPECT_EQ(contentsOf(m_file), "new");
    EXPECT_EQ(contentsOf(elsewhere), "kept");
    auto names = namesIn(m_folder.path());
    std::ranges::sort(names);
    EXPECT_EQ(names,
        (std::vector<std::string> {
            ".other.7-1.tmp", ".settings.link.tmp", ".settings.tmp", "elsewhere", "settings" }));
}

TEST_F(AtomicFileTest, TheResultIsTheFileThatIsInPlaceNow)
{
    for (const auto* contents : { "first", "second" }) {
        const auto written = writeFileAtomically(m_file, contents, 0600);
        ASSERT_TRUE(written);
        struct stat status {};
        ASSERT_EQ(::stat(m_file.c_str(), &status), 0);
        EXPECT_EQ(written->st_ino, status.st_ino);
        EXPECT_EQ(written->st_ctime, status.st_ctime);
        EXPECT_EQ(written->st_size, status.st_size);
    }
}

}
