#include "service/CommandLine.h"

#include <gtest/gtest.h>

namespace brevanta::service {

TEST(CommandLine, EveryOptionIsTaken)
{
    const auto parsed = CommandLine::parse({ "--socket", "s", "--control", "c", "--scenario", "f", "--state", "t",
        "--stdin", "--root", "r", "--removal-seconds", "0", "1.5", "20", "--log-requests" });
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->socketPath, "s");
    EXPECT_EQ(parsed->controlPath, "c");
    EXPECT_EQ(parsed->scenarioPath, "f");
    EXPECT_EQ(parsed->statePath, "t");
    EXPECT_EQ(parsed->rootPath, "r");
    EXPECT_EQ(parsed->removalTimes.pending, 0);
    EXPECT_EQ(parsed->removalTimes.committed, 1.5);
    EXPECT_EQ(parsed->removalTimes.finishing, 20);
    EXPECT_TRUE(parsed->takesStandardInput);
    EXPECT_EQ(parsed->logDetail, LogDetail::redacted);
    EXPECT_EQ(CommandLine::parse({ "--socket", "s", "--log-requests=full" })->logDetail, LogDetail::full);
}

TEST(CommandLine, MistakesAreRefused)
{
    const std::vector<std::string> lines[]
        = { {}, { "--stdin" }, { "--socket" }, { "--socket", "" }, { "--sockets", "s" }, { "--socket", "s", "extra" },
              { "--socket", "s", "--control" }, { "--socket", "s", "--control", "s" },
              { "--socket", "s", "--log-requests=all" }, { "--socket", "s", "--removal-seconds", "1", "2", "3" },
              { "--socket", "s", "--root", "r", "--removal-seconds", "1", "2" },
              { "--socket", "s", "--root", "r", "--removal-seconds", "1", "-2", "3" },
              { "--socket", "s", "--removal-seconds", "1", "2", "--root", "r" } };
    for (const auto& line : lines)
        EXPECT_FALSE(CommandLine::parse(line)) << testing::PrintToString(line);
}

TEST(CommandLine, HelpNeedsNothingElse)
{
    for (const auto* help : { "--help", "help" })
        EXPECT_EQ(CommandLine::parse({ help })->purpose, CommandLine::Purpose::showHelp);
    EXPECT_EQ(CommandLine::parse({ "--version" })->purpose, CommandLine::Purpose::showVersion);
}

}
