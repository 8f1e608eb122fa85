#include "app/StaleCopies.h"

#include "fakes/FakeMainLoop.h"
#include "fakes/FakeProgramRunner.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

using ProgramRun = FakeProgramRunner::Run;

constexpr auto bundle = "/Applications/Brevanta.app";
constexpr auto registry = "/System/Library/Frameworks/CoreServices.framework/Versions/Current/Frameworks/"
                          "LaunchServices.framework/Versions/Current/Support/lsregister";

class StaleCopiesTest : public testing::Test {
protected:
    StaleCopies::Dependencies dependencies()
    {
        return {
            .programs = programs, .clock = clock, .root = "/", .bundle = bundle, .bundleIdentifier = "com.example.App"
        };
    }

    void begin()
    {
        copies.begin();
        mainLoop.runPosted();
    }
    void endRun(const std::expected<std::string, ProgramError>& result, double after = 0)
    {
        mainLoop.advance(after);
        programs.ends.answerOldest(result);
        mainLoop.runPosted();
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    FakeProgramRunner programs { mainLoop };
    StaleCopies copies { dependencies() };
};

}

TEST(OtherCopies, AreTheOtherPathsOfTheLines)
{
    const struct {
        const char* output;
        std::vector<std::string> expected;
    } cases[] = {
        { "", {} },
        { "\n\n", {} },
        { "/Applications/Brevanta.app\n", {} },
        { "/Applications/Brevanta.app/\n/Applications/./Brevanta.app", {} },
        { "/Old/Brevanta.app\n/Applications/Brevanta.app\n/Applications/Brevanta.app.old\n",
            { "/Old/Brevanta.app", "/Applications/Brevanta.app.old" } },
        { "/A B/Brevanta.app", { "/A B/Brevanta.app" } },
        { "-f\nBrevanta.app\n", {} },
    };
    for (const auto& [output, expected] : cases)
        EXPECT_EQ(otherCopies(output, bundle), expected) << output;
}

TEST_F(StaleCopiesTest, EachOtherCopyIsForgottenOneAfterAnother)
{
    programs.ends.isHeld = true;
    begin();
    EXPECT_EQ(programs.runs,
        (std::vector<ProgramRun> { { "/usr/bin/mdfind", { "kMDItemCFBundleIdentifier == 'com.example.App'" }, 10 } }));
    endRun("/a/B.app\n/Applications/Brevanta.app\n/c/D.app\n", 1);
    ASSERT_EQ(programs.runs.size(), 2U);
    EXPECT_EQ(programs.runs[1], (ProgramRun { registry, { "-u", "/a/B.app" }, 9 }));
    endRun(std::unexpected(ProgramError::notStarted), 2);
    ASSERT_EQ(programs.runs.size(), 3U);
    EXPECT_EQ(programs.runs[2], (ProgramRun { registry, { "-u", "/c/D.app" }, 7 })) << "a failure is no hindrance";
    endRun("");
    EXPECT_EQ(programs.runs.size(), 3U);
}

TEST_F(StaleCopiesTest, NothingBeginsAfterTenSeconds)
{
    programs.ends.isHeld = true;
    begin();
    endRun("/a/B.app\n/c/D.app\n", 4);
    endRun(std::unexpected(ProgramError::outOfTime), 6);
    EXPECT_EQ(programs.runs.size(), 2U);
}

TEST_F(StaleCopiesTest, WithoutAnAnswerOrABundleNothingIsForgotten)
{
    programs.ends.result = std::unexpected(ProgramError::notStarted);
    begin();
    EXPECT_EQ(programs.runs.size(), 1U);
    auto without = dependencies();
    without.bundle.clear();
    StaleCopies(without).begin();
    mainLoop.runPosted();
    EXPECT_EQ(programs.runs.size(), 1U);
}

}
