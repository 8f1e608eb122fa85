#include "posix/FileStorePosix.h"

#include "posix/AtomicFile.h"
#include "posix/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace brevanta {

namespace {

mode_t modeOf(FilePermissions permissions)
{
    switch (permissions) {
    case FilePermissions::ownerOnly:
        return 0600;
    case FilePermissions::readableByAll:
        return 0644;
    case FilePermissions::executableByAll:
        return 0755;
    }
    return 0600;
}

// The nanoseconds' field is st_ctim in POSIX.1-2008 and st_ctimespec on macOS: stat(2).
template <typename Status> std::int64_t changedAt(const Status& status)
{
    timespec time {};
    if constexpr (requires { status.st_ctim; })
        time = status.st_ctim;
    else
        time = status.st_ctimespec;
    return std::int64_t { time.tv_sec } * 1'000'000'000 + time.tv_nsec;
}

FileStamp stampOf(const struct stat& status)
{
    return { .device = static_cast<std::uint64_t>(status.st_dev),
        .inode = static_cast<std::uint64_t>(status.st_ino),
        .size = static_cast<std::uint64_t>(status.st_size),
        .changedAtNanoseconds = changedAt(status) };
}

std::unexpected<FileStoreError> cannotRead(int code)
{
    // A path through something that is no folder leads to no file either.
    const bool isMissing = code == ENOENT || code == ENOTDIR;
    return std::unexpected(FileStoreError { .message = std::generic_category().message(code),
        .kind = isMissing ? FileStoreError::Kind::missing : FileStoreError::Kind::failed });
}

// Fills the text from its beginning; less than its size only at the end of the file. Negative, with errno set, when it
// cannot be read.
ssize_t readFully(int descriptor, std::string& text)
{
    std::size_t filled = 0;
    while (filled < text.size()) {
        const auto count = ::read(descriptor, text.data() + filled, text.size() - filled);
        if (count == 0)
            break;
        if (count > 0)
            filled += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return -1;
    }
    return static_cast<ssize_t>(filled);
}

}

std::expected<FileStamp, FileStoreError> FileStorePosix::replace(
    const std::filesystem::path& path, std::string_view contents, FilePermissions permissions)
{
    const auto written = writeFileAtomically(path, contents, modeOf(permissions));
    if (!written)
        return std::unexpected(FileStoreError { describe(written.error()) });
    return stampOf(*written);
}

std::optional<FileStamp> FileStorePosix::stamp(const std::filesystem::path& path) const
{
    struct stat status {};
    if (::lstat(path.c_str(), &status) || !S_ISREG(status.st_mode))
        return std::nullopt;
    return stampOf(status);
}

std::expected<std::string, FileStoreError> FileStorePosix::read(const std::filesystem::path& path) const
{
    // Does not wait for the other end of a pipe.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status))
        return cannotRead(errno);
    if (S_ISDIR(status.st_mode))
        return cannotRead(EISDIR);
    if (!S_ISREG(status.st_mode))
        return cannotRead(EINVAL);
    // One byte more than the file has shows that it has not grown meanwhile.
    std::string contents(
        std::min(static_cast<std::uintmax_t>(status.st_size), std::uintmax_t { largestRead }) + 1, '\0');
    const auto size = readFully(file.get(), contents);
    if (size < 0)
        return cannotRead(errno);
    if (static_cast<std::size_t>(size) == contents.size())
        return cannotRead(EFBIG);
    contents.resize(static_cast<std::size_t>(size));
    return contents;
}

std::expected<void, FileStoreError> FileStorePosix::createFolder(const std::filesystem::path& path)
{
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (!error && !std::filesystem::is_directory(path, error) && !error)
        error = std::make_error_code(std::errc::not_a_directory);
    if (error)
        return std::unexpected(FileStoreError { error.message() });
    return {};
}

bool FileStorePosix::isFolder(const std::filesystem::path& path) const
{
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

std::optional<FilePermissions> FileStorePosix::permissions(const std::filesystem::path& path) const
{
    struct stat status {};
    if (::lstat(path.c_str(), &status) || !S_ISREG(status.st_mode))
        return std::nullopt;
    for (const auto permissions :
        { FilePermissions::ownerOnly, FilePermissions::readableByAll, FilePermissions::executableByAll }) {
        if ((status.st_mode & mode_t { 07777 }) == modeOf(permissions))
            return permissions;
    }
    return std::nullopt;
}

}
