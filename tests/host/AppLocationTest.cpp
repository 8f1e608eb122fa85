#include "posix/AppLocation.h"

#include "functional/support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/statvfs.h>

namespace brevanta {

TEST(AppLocation, LinksAreFollowedAndWhatIsMissingIsLeftOut)
{
    const functional::TemporaryDirectory folder;
    const auto root = std::filesystem::canonical(folder.path());
    const auto bundle = root / "System/Applications/Brevanta.app";
    std::filesystem::create_directories(bundle);
    std::filesystem::create_symlink(root / "System/Applications", root / "Applications");
    std::filesystem::create_symlink(bundle, root / "Desktop.app");

    const AppLocationPolicy::Context expected { .resolvedBundleURL = bundle,
        .resolvedSystemApplicationsURL = root / "System/Applications",
        .volumeIsReadOnly = false,
        .resolvedUserApplicationsURL = std::nullopt };
    for (const auto* const way : { "Applications/Brevanta.app", "Desktop.app", "System/Applications/Brevanta.app" }) {
        EXPECT_EQ(appLocation(root / way, root / "Applications", root / "Users/ada/Applications"), expected) << way;
        EXPECT_EQ(AppLocationPolicy::classify(appLocation(root / way, root / "Applications", "")), std::nullopt);
    }

    std::filesystem::create_symlink(root / "System", root / "Mine");
    EXPECT_EQ(appLocation(bundle, root / "Applications", root / "Mine").resolvedUserApplicationsURL, root / "System");

    const auto gone = appLocation(root / "Gone.app", root / "NoApplications", root);
    EXPECT_EQ(gone.resolvedBundleURL, root / "Gone.app");
    EXPECT_EQ(gone.resolvedSystemApplicationsURL, root / "NoApplications");
    EXPECT_EQ(gone.volumeIsReadOnly, std::nullopt);
}

TEST(AppLocation, AReadOnlyVolumeIsToldByItsFlag)
{
    // Those of these that the system mounts read-only, if any: nobody but the superuser can mount one for the test.
    const functional::TemporaryDirectory writable;
    for (const std::filesystem::path& volume : { std::filesystem::path("/sys"), std::filesystem::path("/proc/sys"),
             std::filesystem::path("/"), writable.path() }) {
        struct statvfs facts {};
        if (::statvfs(volume.c_str(), &facts))
            continue;
        EXPECT_EQ(appLocation(volume, "/", "").volumeIsReadOnly, (facts.f_flag & ST_RDONLY) != 0) << volume;
    }
}

}
