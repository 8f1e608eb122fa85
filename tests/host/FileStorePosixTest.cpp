#include "posix/FileStorePosix.h"

#include "functional/support/TemporaryDirectory.h"
#include "host/FileStoreContract.h"

#include <fstream>
#include <sys/stat.h>

namespace brevanta {

namespace {

class FileStorePosixBench {
public:
    FileStore& store() { return m_store; }
    [[nodiscard]] std::filesystem::path path() const { return m_folder.path() / "file"; }
    [[nodiscard]] std::filesystem::path impossiblePath() const { return m_folder.path() / "missing" / "child"; }
    [[nodiscard]] std::optional<std::string> contents() const
    {
        std::ifstream file(path(), std::ios::binary);
        return file ? std::optional(std::string(std::istreambuf_iterator<char>(file), {})) : std::nullopt;
    }
    [[nodiscard]] std::optional<FilePermissions> permissions() const
    {
        struct stat status {};
        if (::stat(path().c_str(), &status))
            return std::nullopt;
        switch (status.st_mode & 07777U) {
        case 0600:
            return FilePermissions::ownerOnly;
        case 0644:
            return FilePermissions::readableByAll;
        case 0755:
            return FilePermissions::executableByAll;
        default:
            return std::nullopt;
        }
    }
    void replaceFromOutside(const std::string& contents) const
    {
        std::ofstream(path().string() + ".new", std::ios::binary) << contents;
        std::filesystem::rename(path().string() + ".new", path());
    }
    void removeFromOutside() const { std::filesystem::remove(path()); }

private:
    functional::TemporaryDirectory m_folder;
    FileStorePosix m_store;
};

}

INSTANTIATE_TYPED_TEST_SUITE_P(Posix, FileStoreContract, FileStorePosixBench);

TEST(FileStorePosix, LinksAndFoldersAreNoFiles)
{
    const functional::TemporaryDirectory folder;
    const auto file = folder.path() / "file";
    const auto link = folder.path() / "link";
    FileStorePosix store;
    ASSERT_TRUE(store.replace(file, "x", FilePermissions::ownerOnly));
    std::filesystem::create_symlink(file, link);
    EXPECT_EQ(store.stamp(link), std::nullopt);
    EXPECT_EQ(store.stamp(folder.path()), std::nullopt);
    EXPECT_EQ(store.permissions(link), std::nullopt);
    ASSERT_EQ(::chmod(file.c_str(), 04755), 0);
    EXPECT_EQ(store.permissions(file), std::nullopt) << "none that it gives";
}

}
