#include "gtk/CrashReporterGtk.h"

#include "fakes/FakeFileStore.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

const CrashReporterOptions options { .endpoint = "https://key@crashes.example/7",
    .host = "crashes.example",
    .environment = "stage\"1",
    .release = "com.example.Client@1.2.3",
    .scrub = {} };

}

TEST(CrashReporterGtkTest, WhatItWouldBeStartedWithIsTakenDownWithoutTheKey)
{
    FakeFileStore files;
    EXPECT_TRUE(CrashReporterGtk(files, "/root/crash-reporter.json").start(options));
    EXPECT_EQ(files.contents("/root/crash-reporter.json"),
        R"({"environment":"stage\"1","host":"crashes.example","release":"com.example.Client@1.2.3"})");
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
