#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace brevanta {

// Who may do what with a file that is made; exactly this, whatever the process's own mask.
enum class FilePermissions {
    ownerOnly, // Read and written by its owner: 0600.
    readableByAll, // 0644
    executableByAll, // 0755
};

// Tells one content of a file from another without reading it: changed by whoever writes, replaces or touches the file.
struct FileStamp {
    std::uint64_t device { 0 };
    std::uint64_t inode { 0 };
    std::uint64_t size { 0 };
    std::int64_t changedAtNanoseconds { 0 }; // st_ctime, stat(2).

    bool operator==(const FileStamp&) const = default;
};

struct FileStoreError {
    enum class Kind {
        failed,
        missing, // There is no file at the path; only reading tells it apart.
    };

    std::string message; // In English, for the log; without the file's path and contents.
    Kind kind { Kind::failed };

    bool operator==(const FileStoreError&) const = default;
};

// Small files that are replaced as a whole. Any thread; waits for the disk.
class FileStore {
public:
    virtual ~FileStore() = default;

    // Puts `contents` in the place of the file, or makes it: who reads `path` meets the old file or the whole new one.
    // The new one has these permissions from its first byte. On an error the old file is as it was, and nothing is left
    // beside it. The stamp is that of the new file.
    [[nodiscard]] virtual std::expected<FileStamp, FileStoreError> replace(
        const std::filesystem::path& path, std::string_view contents, FilePermissions permissions)
        = 0;

    // Nothing when there is no file at the path, or it cannot be looked at.
    [[nodiscard]] virtual std::optional<FileStamp> stamp(const std::filesystem::path& path) const = 0;

    // The whole contents of the file, or of the one that a link at the path leads to. A file of more than `largestRead`
    // bytes, and what is no file, cannot be read.
    static constexpr std::size_t largestRead { 1024UL * 1024UL };
    [[nodiscard]] virtual std::expected<std::string, FileStoreError> read(const std::filesystem::path& path) const = 0;

    // Makes the folder, and those above it that are missing, with the permissions that new folders of this process
    // have. One that is there already, or a link to one, stays as it is.
    [[nodiscard]] virtual std::expected<void, FileStoreError> createFolder(const std::filesystem::path& path) = 0;

    // Whether there is a folder at the path, or a link to one. False, too, when that cannot be found out.
    [[nodiscard]] virtual bool isFolder(const std::filesystem::path& path) const = 0;

    // Those of the file at the path; nothing when `stamp` gives nothing, or when they are none of these.
    [[nodiscard]] virtual std::optional<FilePermissions> permissions(const std::filesystem::path& path) const = 0;
};

// How a file is that should hold certain bytes.
enum class FilePlacement {
    inPlace,
    missing, // There is none, or it cannot be looked at.
    different, // It holds something else, or others may use it than should.
};

// Whether the file holds exactly `contents` and, where they are given, has these permissions. Only a file of the right
// size is read.
[[nodiscard]] inline FilePlacement placementOf(const FileStore& files, const std::filesystem::path& path,
    std::string_view contents, std::optional<FilePermissions> permissions = std::nullopt)
{
    const auto stamp = files.stamp(path);
    if (!stamp)
        return FilePlacement::missing;
    const bool matches = stamp->size == contents.size() && (!permissions || files.permissions(path) == permissions)
        && files.read(path) == contents;
    return matches ? FilePlacement::inPlace : FilePlacement::different;
}

}
