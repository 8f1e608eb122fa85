#include "posix/AtomicFile.h"

#include "posix/FileDescriptor.h"
#include "posix/WriteAll.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>

namespace brevanta {

namespace {

using Step = FileWriteError::Step;

std::unexpected<FileWriteError> fail(Step step) { return std::unexpected(FileWriteError { step, errno }); }

// A file beside the one that it is to replace; removed unless it has taken that one's place.
class TemporaryFile {
public:
    explicit TemporaryFile(std::filesystem::path path)
        : m_path(std::move(path))
    {
    }
    ~TemporaryFile()
    {
        if (m_descriptor)
            ::unlink(m_path.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] bool create(mode_t mode)
    {
        m_descriptor.reset(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        return static_cast<bool>(m_descriptor);
    }

    [[nodiscard]] int descriptor() const { return m_descriptor.get(); }

    [[nodiscard]] bool moveTo(const std::filesystem::path& target)
    {
        if (std::rename(m_path.c_str(), target.c_str()))
            return false;
        m_descriptor.reset();
        return true;
    }

private:
    std::filesystem::path m_path;
    FileDescriptor m_descriptor;
};

std::filesystem::path temporaryPathBeside(const std::filesystem::path& path)
{
    // Unique by process and call, and short whatever the file's own name.
    static std::atomic<unsigned> counter { 0 };
    return path.parent_path()
        / (".brevanta-" + std::to_string(::getpid()) + '-' + std::to_string(counter.fetch_add(1)) + ".tmp");
}

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

std::expected<void, FileWriteError> writeFileAtomically(
    const std::filesystem::path& path, std::string_view contents, mode_t mode)
{
    // A process that had this one's number may have crashed and left a file of this name.
    for (int attemptsLeft = 16; attemptsLeft > 0; --attemptsLeft) {
        TemporaryFile file(temporaryPathBeside(path));
        if (!file.create(mode)) {
            if (errno == EEXIST && attemptsLeft > 1)
                continue;
            return fail(Step::create);
        }
        if (::fchmod(file.descriptor(), mode))
            return fail(Step::create);
        if (!writeAll(file.descriptor(), contents))
            return fail(Step::write);
        if (::fsync(file.descriptor()))
            return fail(Step::flush);
        if (!file.moveTo(path))
            return fail(Step::replace);
        return {};
    }
    return std::unexpected(FileWriteError { Step::create, EEXIST });
}

}
