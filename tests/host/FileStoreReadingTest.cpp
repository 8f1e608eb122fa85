#include "fakes/FakeFileStore.h"
#include "functional/support/TemporaryDirectory.h"
#include "posix/FileStorePosix.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace brevanta {

namespace {

using functional::TemporaryDirectory;
using Kind = FileStoreError::Kind;

void write(const std::filesystem::path& path, const std::string& contents)
{
    std::ofstream(path, std::ios::binary) << contents;
}

// What holds for the reading and the folders of every FileStore, on a path in an existing folder.
void expectContract(FileStore& store, const std::filesystem::path& folder, const std::filesystem::path& file)
{
    const auto missing = store.read(file);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().kind, Kind::missing);
    for (const auto& contents :
        { std::string(), std::string("a\0\xFF\n", 4), std::string(FileStore::largestRead, 'x') }) {
        ASSERT_TRUE(store.replace(file, contents, FilePermissions::ownerOnly));
        EXPECT_TRUE(store.read(file) == contents) << contents.size();
    }
    ASSERT_TRUE(store.replace(file, std::string(FileStore::largestRead + 1, 'x'), FilePermissions::ownerOnly));
    const auto tooLarge = store.read(file);
    ASSERT_FALSE(tooLarge);
    EXPECT_EQ(tooLarge.error().kind, Kind::failed);
    EXPECT_FALSE(tooLarge.error().message.empty());

    EXPECT_FALSE(store.isFolder(folder / "new"));
    EXPECT_TRUE(store.createFolder(folder / "new" / "deeper"));
    EXPECT_TRUE(store.createFolder(folder / "new" / "deeper"));
    for (const auto& made : { folder, folder / "new", folder / "new" / "deeper" })
        EXPECT_TRUE(store.isFolder(made)) << made;
    for (const auto& none : { file, file / "below", folder / "ne", folder / "new" / "deeper" / "still" })
        EXPECT_FALSE(store.isFolder(none)) << none;
    EXPECT_FALSE(store.createFolder(file)) << "a file is in the way";
}

}

TEST(FileStoreReading, TheFakeAndTheRealOneAgree)
{
    FakeFileStore fake;
    expectContract(fake, "/folder", "/folder/file");
    const TemporaryDirectory folder;
    FileStorePosix real;
    expectContract(real, folder.path(), folder.path() / "file");
    EXPECT_TRUE(std::filesystem::is_directory(folder.path() / "new" / "deeper"));
}

TEST(FileStoreReading, LinksAreFollowedAndWhatIsNoFileNeverMakesTheReaderWait)
{
    const TemporaryDirectory folder;
    FileStorePosix store;
    write(folder.path() / "file", "contents");
    std::filesystem::create_symlink("file", folder.path() / "link");
    std::filesystem::create_symlink("nowhere", folder.path() / "broken");
    std::filesystem::create_symlink("loop", folder.path() / "loop");
    ASSERT_EQ(::mkfifo((folder.path() / "pipe").c_str(), 0600), 0);

    EXPECT_EQ(store.read(folder.path() / "link"), "contents");
    const std::pair<std::filesystem::path, Kind> unreadable[] {
        { folder.path() / "broken", Kind::missing },
        { folder.path() / "file" / "below", Kind::missing },
        { folder.path() / "no" / "folder", Kind::missing },
        { folder.path() / "loop", Kind::failed },
        { folder.path() / "pipe", Kind::failed },
        { folder.path(), Kind::failed },
        { "/dev/null", Kind::failed },
    };
    for (const auto& [path, kind] : unreadable) {
        const auto contents = store.read(path);
        ASSERT_FALSE(contents) << path;
        EXPECT_EQ(contents.error().kind, kind) << path;
        EXPECT_FALSE(contents.error().message.empty());
        EXPECT_FALSE(contents.error().message.contains(folder.path().string()));
    }
}

TEST(FileStoreReading, AFolderIsMadeThroughALinkButNotThroughAFile)
{
    const TemporaryDirectory folder;
    FileStorePosix store;
    write(folder.path() / "file", "");
    std::filesystem::create_directory(folder.path() / "real");
    std::filesystem::create_directory_symlink("real", folder.path() / "link");
    EXPECT_TRUE(store.isFolder(folder.path() / "link"));
    EXPECT_TRUE(store.createFolder(folder.path() / "link"));
    EXPECT_TRUE(store.createFolder(folder.path() / "link" / "below"));
    EXPECT_TRUE(std::filesystem::is_directory(folder.path() / "real" / "below"));
    for (const auto& path : { folder.path() / "file", folder.path() / "file" / "below" }) {
        const auto made = store.createFolder(path);
        ASSERT_FALSE(made) << path;
        EXPECT_FALSE(made.error().message.empty());
    }
}

}
