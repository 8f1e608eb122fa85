#include "posix/AtomicFile.h"

#include "posix/FileDescriptor.h"
#include "posix/WriteAll.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace brevanta {

namespace {

using Step = FileWriteError::Step;

std::unexpected<FileWriteError> fail(Step step) { return std::unexpected(FileWriteError { step, errno }); }

constexpr std::string_view temporaryEnding = ".tmp";

// The beginning of the names of all files that are to replace this one.
std::string temporaryBeginning(const std::filesystem::path& target)
{
    return std::string(".").append(target.filename().native()).append(".");
}

// With a number that this process gives once, a name that no writer has.
std::string temporaryName(const std::filesystem::path& target, unsigned number)
{
    return temporaryBeginning(target) + std::to_string(::getpid()) + '-' + std::to_string(number)
        + std::string(temporaryEnding);
}

// What killed writers of the file have left. No writer that still runs takes as long as that to fill its file.
void removeAbandoned(const std::filesystem::path& target, const struct stat& newest)
{
    constexpr time_t abandonedAfterSeconds = 60;
    const auto beginning = temporaryBeginning(target);
    std::error_code error;
    for (std::filesystem::directory_iterator entry(target.parent_path(), error), end; !error && entry != end;
        entry.increment(error)) {
        const auto name = entry->path().filename().native();
        struct stat status {};
        if (name.starts_with(beginning) && name.ends_with(temporaryEnding) && !::lstat(entry->path().c_str(), &status)
            && S_ISREG(status.st_mode) && newest.st_mtime - status.st_mtime > abandonedAfterSeconds)
            ::unlink(entry->path().c_str());
    }
}

// The file beside the one that it is to replace; removed unless it has taken that one's place.
class TemporaryFile {
public:
    TemporaryFile() = default;
    ~TemporaryFile()
    {
        if (m_descriptor)
            ::unlink(m_path.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // False, with errno set, when it cannot be made.
    [[nodiscard]] bool createBeside(const std::filesystem::path& target)
    {
        static std::atomic<unsigned> lastNumber { 0 };
        // A process that was killed may have had the number of this one.
        for (int attemptsLeft = 100; attemptsLeft > 0; --attemptsLeft) {
            m_number = ++lastNumber;
            m_path = target;
            m_path.replace_filename(temporaryName(target, m_number));
            m_descriptor.reset(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
            if (m_descriptor || errno != EEXIST)
                break;
        }
        return static_cast<bool>(m_descriptor);
    }

    [[nodiscard]] int descriptor() const { return m_descriptor.get(); }

    [[nodiscard]] std::expected<struct stat, FileWriteError> moveTo(const std::filesystem::path& target)
    {
        if (std::rename(m_path.c_str(), target.c_str()))
            return fail(Step::replace);
        const FileDescriptor file = std::move(m_descriptor);
        struct stat status {}; // Stays that of no file should the system not tell.
        ::fstat(file.get(), &status);
        constexpr unsigned writesBetweenLooks = 16; // To look takes a fifth of the time of a small write.
        if (m_number % writesBetweenLooks == 0)
            removeAbandoned(target, status);
        return status;
    }

private:
    std::filesystem::path m_path;
    unsigned m_number { 0 };
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
    TemporaryFile file;
    if (!file.createBeside(path) || ::fchmod(file.descriptor(), mode))
        return fail(Step::create);
    if (!writeAll(file.descriptor(), contents))
        return fail(Step::write);
    if (::fsync(file.descriptor()))
        return fail(Step::flush);
    return file.moveTo(path);
}

}
