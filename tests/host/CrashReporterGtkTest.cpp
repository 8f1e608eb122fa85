#include "gtk/CrashReporterGtk.h"

#include "fakes/FakeFileStore.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

const CrashReporterOptions options { .endpoint = "https://key@crashes.example/7",
    .host = "crashes.example",
    .environment = "stage\"1",
    .release = "com.example.Client@1.2.3",
    .scrub = [](auto, std::string_view text) { return std::string(text) + ", scrubbed"; } };

}

TEST(CrashReporterGtkTest, WhatItWouldBeStartedWithIsTakenDownWithoutTheKey)
{
    FakeFileStore files;
    CrashReporterGtk reporter(files, "/root/crash-reporter.json");
    EXPECT_TRUE(reporter.start(options));
    EXPECT_EQ(files.contents("/root/crash-reporter.json"),
        R"({"environment":"stage\"1","host":"crashes.example","release":"com.example.Client@1.2.3"})");
    reporter.capture({ .kind = "install", .message = "no room" });
    EXPECT_TRUE(files.contents("/root/crash-reporter.json")
            ->contains(R"("errors":[{"kind":"install","message":"no room, scrubbed"}])"));
}

TEST(CrashReporterGtkTest, WithoutARecordOrRoomForItItDoesNotStart)
{
    FakeFileStore files;
    EXPECT_EQ(CrashReporterGtk(files, std::nullopt).start(options).error().kind, CrashReporterError::Kind::unavailable);
    EXPECT_TRUE(files.writes().empty());
    files.failure = FileStoreError { "no room" };
    EXPECT_EQ(CrashReporterGtk(files, "/root/crash-reporter.json").start(options),
        std::unexpected(CrashReporterError { .message = "no room" }));
}

}
