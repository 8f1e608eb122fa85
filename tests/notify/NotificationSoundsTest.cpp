#include "notify/NotificationSounds.h"

#include "fakes/FakeFileStore.h"
#include "fakes/FakePorts.h"
#include "notify/NotificationSoundGesture.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Lines = std::vector<std::string>;

class NotificationSoundsTest : public testing::Test {
protected:
    NotificationSoundsTest()
    {
        for (const auto* const name : { "gain", "loss", "reblock", "signature" })
            m_files.replaceFromOutside(bundled(name), std::string("sound of ") + name);
    }

    static std::filesystem::path bundled(const std::string& name) { return "/bundle/brevanta-" + name + ".aiff"; }
    static std::filesystem::path installed(const std::string& name)
    {
        return "/home/me/Library/Sounds/brevanta-" + name + ".aiff";
    }

    // The lines that one installation logs.
    Lines install()
    {
        m_log.lines.clear();
        installNotificationSounds(m_files, m_log, "/bundle", "/home/me");
        return m_log.lines;
    }

    FakeFileStore m_files;
    FakeSystemLog m_log;
};

const Lines allInstalled {
    "[NotificationSounds] installed brevanta-gain.aiff, brevanta-loss.aiff, brevanta-reblock.aiff, "
    "brevanta-signature.aiff into /home/me/Library/Sounds (kept 0)",
};

}

TEST(NotificationSoundGesture, TheIdentifierChoosesTheGestureByTheLongestKeyInFrontOfAHyphen)
{
    using enum NotificationSoundGesture;
    const std::pair<std::string_view, std::optional<NotificationSoundGesture>> cases[] {
        { "app-rejected", loss },
        { "auto-track-start", signature },
        { "auto-track-stop", reblock },
        { "calendar-reminder", signature },
        { "high-lp", gain },
        { "intraday", signature },
        { "low-lp", loss },
        { "no-lp", loss },
        { "task-resumed", gain },
        { "task-timer", signature },
        { "auto-track-stop-17", reblock },
        { "calendar-reminder-1-2", signature },
        { "task-resumed-", gain },
        { "", std::nullopt },
        { "-", std::nullopt },
        { "auto-track", std::nullopt },
        { "auto-track-stopped", std::nullopt },
        { "calendar", std::nullopt },
        { "calendar-9", std::nullopt },
        { "intraday9", std::nullopt },
        { "Intraday-9", std::nullopt },
        { "my-no-lp", std::nullopt },
        { "pf-switched-off-contentFilter", std::nullopt },
    };
    for (const auto& [identifier, gesture] : cases)
        EXPECT_EQ(gestureForNotification(identifier), gesture) << identifier;
}

TEST_F(NotificationSoundsTest, InstallsAllFourForEverybodyToReadAndKeepsThemAfterwards)
{
    EXPECT_EQ(install(), allInstalled);
    EXPECT_TRUE(m_files.folders().contains("/home/me/Library/Sounds"));
    for (const auto* const name : { "gain", "loss", "reblock", "signature" }) {
        EXPECT_EQ(m_files.contents(installed(name)), std::string("sound of ") + name);
        EXPECT_EQ(m_files.permissions(installed(name)), FilePermissions::readableByAll);
    }
    const auto writes = m_files.writes().size();
    EXPECT_EQ(install(), Lines { "[NotificationSounds] installed nothing into /home/me/Library/Sounds (kept 4)" });
    EXPECT_EQ(m_files.writes().size(), writes);
}

TEST_F(NotificationSoundsTest, ReplacesWhatDiffersEvenInNothingButOneByte)
{
    install();
    m_files.replaceFromOutside(installed("loss"), "sound of lOss");
    m_files.replaceFromOutside(installed("reblock"), "");
    m_files.removeFromOutside(installed("gain"));
    EXPECT_EQ(install(),
        Lines { "[NotificationSounds] installed brevanta-gain.aiff, brevanta-loss.aiff, brevanta-reblock.aiff into "
                "/home/me/Library/Sounds (kept 1)" });
    EXPECT_EQ(m_files.contents(installed("loss")), "sound of loss");
}

TEST_F(NotificationSoundsTest, AFileThatCannotBeReadInPlaceIsReplaced)
{
    install();
    m_files.readFailures[installed("gain")] = { "Permission denied" };
    EXPECT_EQ(
        install(), Lines { "[NotificationSounds] installed brevanta-gain.aiff into /home/me/Library/Sounds (kept 3)" });
}

TEST_F(NotificationSoundsTest, WhatTheBundleLacksIsLoggedAndCostsTheOthersNothing)
{
    m_files.removeFromOutside(bundled("gain"));
    m_files.readFailures[bundled("reblock")] = { "Input/output error" };
    EXPECT_EQ(install(),
        (Lines { "[NotificationSounds] bundled sound missing: brevanta-gain.aiff",
            "[NotificationSounds] cannot read bundled brevanta-reblock.aiff: Input/output error",
            "[NotificationSounds] installed brevanta-loss.aiff, brevanta-signature.aiff into /home/me/Library/Sounds "
            "(kept 0)" }));
}

TEST_F(NotificationSoundsTest, AFolderThatCannotBeMadeIsLoggedOnce)
{
    m_files.folderFailure = FileStoreError { "Read-only file system" };
    EXPECT_EQ(install(),
        (Lines { "[NotificationSounds] cannot create /home/me/Library/Sounds: Read-only file system",
            "[NotificationSounds] nothing installed: 4 file(s) failed to write into /home/me/Library/Sounds" }));
    EXPECT_TRUE(m_files.writes().empty());
}

TEST_F(NotificationSoundsTest, WhatCannotBeWrittenIsCountedOnlyWhenNothingCould)
{
    m_files.replaceFromOutside(installed("gain"), "sound of gain");
    int attempts = 0;
    m_files.whileWriting
        = [&] { m_files.failure = attempts++ == 0 ? std::optional(FileStoreError { "Disk full" }) : std::nullopt; };
    EXPECT_EQ(install(),
        (Lines { "[NotificationSounds] cannot write brevanta-loss.aiff into /home/me/Library/Sounds: Disk full",
            "[NotificationSounds] installed brevanta-reblock.aiff, brevanta-signature.aiff into "
            "/home/me/Library/Sounds (kept 1)" }));
    m_files.whileWriting = [&] { m_files.failure = FileStoreError { "Disk full" }; };
    EXPECT_EQ(install(),
        (Lines { "[NotificationSounds] cannot write brevanta-loss.aiff into /home/me/Library/Sounds: Disk full",
            "[NotificationSounds] nothing installed: 1 file(s) failed to write into /home/me/Library/Sounds" }));
}

}
