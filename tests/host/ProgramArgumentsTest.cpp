#include "posix/ProgramArguments.h"

#include <gtest/gtest.h>
#include <vector>

namespace brevanta {

TEST(ProgramArgumentsTest, SaysWhatTheCommandLineAsksFor)
{
    struct Case {
        std::vector<const char*> arguments;
        std::expected<ProgramAction, UnknownArgument> expected;
    };
    const Case cases[] = {
        { {}, ProgramAction::run },
        { { "--help" }, ProgramAction::showHelp },
        { { "-h" }, ProgramAction::showHelp },
        { { "--version" }, ProgramAction::showVersion },
        { { "--version", "--help" }, ProgramAction::showVersion },
        { { "--help", "--version" }, ProgramAction::showHelp },
        { { "--Help" }, std::unexpected(UnknownArgument { "--Help" }) },
        { { "--help", "--bogus" }, std::unexpected(UnknownArgument { "--bogus" }) },
        { { "file" }, std::unexpected(UnknownArgument { "file" }) },
        { { "" }, std::unexpected(UnknownArgument { "" }) },
    };
    for (const auto& [arguments, expected] : cases) {
        std::string line;
        for (const auto* argument : arguments)
            line.append(argument).append(" ");
        EXPECT_EQ(parseProgramArguments(arguments), expected) << line;
    }
}

TEST(ProgramArgumentsTest, TheUsageNamesEveryArgumentThatIsTaken)
{
    for (const auto* argument : { "-h", "--help", "--version" })
        EXPECT_TRUE(programUsage().contains(argument)) << argument;
    EXPECT_TRUE(programUsage().ends_with('\n'));
}

}
