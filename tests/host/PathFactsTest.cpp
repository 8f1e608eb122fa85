#include "functional/support/TemporaryDirectory.h"
#include "posix/PathFactsPosix.h"
#include "support/NotRoot.h"

#include <fstream>

namespace brevanta {

namespace fs = std::filesystem;

TEST(PathFacts, SayWhatKeepsFilesFromBeingMadeInAFolder)
{
    const functional::TemporaryDirectory directory;
    const auto& top = directory.path();
    fs::permissions(top, fs::perms::all);
    std::ofstream(top / "file") << "text";
    fs::create_symlink("nowhere", top / "link");
    const NotRoot somebody;
    fs::create_directories(top / "mine" / "shut");
    fs::permissions(top / "mine/shut", fs::perms::owner_read | fs::perms::owner_exec);
    struct Case {
        fs::path folder;
        WriteObstacle obstacle;
        fs::path place;
    };
    const Case cases[] {
        { top / "mine", WriteObstacle::none, top / "mine" },
        { top / "mine/new/deeper", WriteObstacle::none, top / "mine" },
        { top / "mine/shut/new", WriteObstacle::ownPermissions, top / "mine/shut" },
        { "/", WriteObstacle::permissions, "/" },
        { "/brevanta-of-nobody/deeper", WriteObstacle::permissions, "/" },
        { top / "file", WriteObstacle::noFolder, top / "file" },
        { top / "file/below", WriteObstacle::noFolder, top / "file" },
        { top / "link/below", WriteObstacle::noFolder, top / "link" },
    };
    for (const auto& [folder, obstacle, place] : cases)
        EXPECT_EQ(folderFacts(folder), (FolderFacts { .obstacle = obstacle, .place = place })) << folder;
    fs::permissions(top / "mine/shut", fs::perms::owner_all);
}

}
