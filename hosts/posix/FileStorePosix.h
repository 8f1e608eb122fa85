#pragma once

#include "platform/FileStore.h"

namespace brevanta {

// Files of the local file system, by `writeFileAtomically` and lstat(2). To `stamp` a link in the place of a file is no
// file.
class FileStorePosix final : public FileStore {
public:
    [[nodiscard]] std::expected<FileStamp, FileStoreError> replace(
        const std::filesystem::path& path, std::string_view contents, FilePermissions permissions) override;

    [[nodiscard]] std::optional<FileStamp> stamp(const std::filesystem::path& path) const override;

    [[nodiscard]] std::expected<std::string, FileStoreError> read(const std::filesystem::path& path) const override;

    [[nodiscard]] std::expected<void, FileStoreError> createFolder(const std::filesystem::path& path) override;

    [[nodiscard]] bool isFolder(const std::filesystem::path& path) const override;

    [[nodiscard]] std::optional<FilePermissions> permissions(const std::filesystem::path& path) const override;
};

}
