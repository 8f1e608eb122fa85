#include "posix/FileStorePosix.h"

#include "posix/AtomicFile.h"

#include <sys/stat.h>

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

}
