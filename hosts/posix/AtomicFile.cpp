#include "posix/AtomicFile.h"

#include "posix/FileDescriptor.h"
#include "posix/WriteAll.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <system_error>

namespace brevanta {

namespace {

using Step = FileWriteError::Step;

std::unexpected<FileWriteError> fail(Step step) { return std::unexpected(FileWriteError { step, errno }); }

// Waits for whoever holds the lock. False, with errno set, where the file system has no locks.
bool lockFile(int descriptor)
{
    int result = 0;
    do
        result = ::flock(descriptor, LOCK_EX);
    while (result && errno == EINTR);
    return !result;
}

bool isAt(const std::filesystem::path& path, int descriptor)
{
    struct stat there {};
    struct stat opened {};
    return !::lstat(path.c_str(), &there) && !::fstat(descriptor, &opened) && there.st_dev == opened.st_dev
        && there.st_ino == opened.st_ino;
}

// Waits until whoever writes this file has put it in its place, or removes it if nobody does.
void awaitOrRemove(const std::filesystem::path& path)
{
    // Neither waits for the other end of a pipe nor follows a link that somebody has put here.
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file && errno == ENOENT)
        return;
    if (!file || !lockFile(file.get()) || isAt(path, file.get()))
        ::unlink(path.c_str());
}

// The file beside the one that it is to replace; removed unless it has taken that one's place.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::filesystem::path& target)
        : m_path(target)
    {
        m_path.replace_filename(std::string(".").append(target.filename().native()).append(".tmp"));
    }
    ~TemporaryFile()
    {
        if (m_descriptor)
            ::unlink(m_path.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // False, with errno set, when it cannot be made.
    [[nodiscard]] bool create()
    {
        // Each further attempt means that another writer has come between.
        for (int attemptsLeft = 1000; attemptsLeft > 0; --attemptsLeft) {
            FileDescriptor file(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
            if (file) {
                const bool isLocked = lockFile(file.get());
                // Before it was locked, another writer may have taken it for one that was left.
                if (isLocked && !isAt(m_path, file.get()))
                    continue;
                m_descriptor = std::move(file);
                return isLocked;
            }
            if (errno != EEXIST)
                return false;
            awaitOrRemove(m_path);
        }
        errno = EEXIST;
        return false;
    }

    [[nodiscard]] int descriptor() const { return m_descriptor.get(); }

    [[nodiscard]] std::expected<struct stat, FileWriteError> moveTo(const std::filesystem::path& target)
    {
        if (std::rename(m_path.c_str(), target.c_str()))
            return fail(Step::replace);
        const FileDescriptor file = std::move(m_descriptor);
        struct stat status {}; // Stays that of no file should the system not tell.
        ::fstat(file.get(), &status);
        return status;
    }

private:
    std::filesystem::path m_path;
    FileDescriptor m_descriptor;
};

std::string_view wordsFor(Step step)
{
    switch (step) {
    case Step::create:
        return "could not create: ";
    case Step::write:
        return "could not write: ";
    case Step::flush:
        return "could not flush: ";
    case Step::replace:
        return "could not replace: ";
    }
    return {};
}

}

std::string describe(const FileWriteError& error)
{
    return std::string(wordsFor(error.step)) + std::generic_category().message(error.code);
}

std::expected<struct stat, FileWriteError> writeFileAtomically(
    const std::filesystem::path& path, std::string_view contents, mode_t mode)
{
    TemporaryFile file(path);
    if (!file.create() || ::fchmod(file.descriptor(), mode))
        return fail(Step::create);
    if (!writeAll(file.descriptor(), contents))
        return fail(Step::write);
    if (::fsync(file.descriptor()))
        return fail(Step::flush);
    return file.moveTo(path);
}

}
