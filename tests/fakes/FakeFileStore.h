#pragma once

#include "platform/FileStore.h"

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <vector>

namespace brevanta {

// Files in memory. Every method may be called from any thread; the public fields belong to the test and are set while
// nobody writes.
class FakeFileStore final : public FileStore {
public:
    struct Write {
        std::filesystem::path path;
        std::string contents;
        FilePermissions permissions;
    };

    [[nodiscard]] std::expected<FileStamp, FileStoreError> replace(
        const std::filesystem::path& path, std::string_view contents, FilePermissions permissions) override
    {
        if (whileWriting)
            whileWriting();
        const std::lock_guard lock(m_mutex);
        if (failure)
            return std::unexpected(*failure);
        m_writes.push_back({ path, std::string(contents), permissions });
        return put(path, contents, permissions);
    }

    [[nodiscard]] std::optional<FileStamp> stamp(const std::filesystem::path& path) const override
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_files.find(path);
        return found != m_files.end() ? std::optional(found->second.stamp) : std::nullopt;
    }

    [[nodiscard]] std::expected<std::string, FileStoreError> read(const std::filesystem::path& path) const override
    {
        const std::lock_guard lock(m_mutex);
        if (const auto unreadable = readFailures.find(path); unreadable != readFailures.end())
            return std::unexpected(unreadable->second);
        const auto found = m_files.find(path);
        if (found == m_files.end())
            return std::unexpected(FileStoreError { .message = "no such file", .kind = FileStoreError::Kind::missing });
        if (found->second.contents.size() > largestRead)
            return std::unexpected(FileStoreError { "too large" });
        return found->second.contents;
    }

    [[nodiscard]] std::expected<void, FileStoreError> createFolder(const std::filesystem::path& path) override
    {
        const std::lock_guard lock(m_mutex);
        if (folderFailure)
            return std::unexpected(*folderFailure);
        if (m_files.contains(path))
            return std::unexpected(FileStoreError { "is a file" });
        m_folders.insert(path);
        return {};
    }

    [[nodiscard]] bool isFolder(const std::filesystem::path& path) const override
    {
        const std::lock_guard lock(m_mutex);
        const auto isBelow = [&](const std::filesystem::path& other) {
            return other != path && std::ranges::mismatch(path, other).in1 == path.end();
        };
        return m_folders.contains(path) || std::ranges::any_of(m_folders, isBelow)
            || std::ranges::any_of(m_files, [&](const auto& file) { return isBelow(file.first); });
    }

    [[nodiscard]] std::optional<FilePermissions> permissions(const std::filesystem::path& path) const override
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_files.find(path);
        return found != m_files.end() ? std::optional(found->second.permissions) : std::nullopt;
    }

    // As another process would do it.
    void replaceFromOutside(const std::filesystem::path& path, std::string_view contents)
    {
        const std::lock_guard lock(m_mutex);
        put(path, contents, FilePermissions::readableByAll);
    }
    void removeFromOutside(const std::filesystem::path& path)
    {
        const std::lock_guard lock(m_mutex);
        m_files.erase(path);
    }

    // The replacements that went well, in their order.
    [[nodiscard]] std::vector<Write> writes() const
    {
        const std::lock_guard lock(m_mutex);
        return m_writes;
    }
    // Nothing when there is no such file.
    [[nodiscard]] std::optional<std::string> contents(const std::filesystem::path& path) const
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_files.find(path);
        return found != m_files.end() ? std::optional(found->second.contents) : std::nullopt;
    }
    [[nodiscard]] std::set<std::filesystem::path> folders() const
    {
        const std::lock_guard lock(m_mutex);
        return m_folders;
    }

    std::optional<FileStoreError> failure; // What every replacement ends with.
    std::optional<FileStoreError> folderFailure; // What every making of a folder ends with.
    std::map<std::filesystem::path, FileStoreError> readFailures; // What reading these files ends with.
    std::function<void()> whileWriting; // Called at the beginning of each replacement.

private:
    struct File {
        std::string contents;
        FilePermissions permissions { FilePermissions::ownerOnly };
        FileStamp stamp;
    };

    FileStamp put(const std::filesystem::path& path, std::string_view contents, FilePermissions permissions)
    {
        ++m_lastInode;
        const FileStamp stamp { .device = 1,
            .inode = m_lastInode,
            .size = contents.size(),
            .changedAtNanoseconds = static_cast<std::int64_t>(m_lastInode) };
        m_files.insert_or_assign(path, File { std::string(contents), permissions, stamp });
        return stamp;
    }

    mutable std::mutex m_mutex;
    std::map<std::filesystem::path, File> m_files;
    std::set<std::filesystem::path> m_folders; // Those that were asked for.
    std::vector<Write> m_writes;
    std::uint64_t m_lastInode { 0 };
};

}
