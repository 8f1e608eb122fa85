#include "posix/ProgramArguments.h"

#include <gtest/gtest.h>
#include <vector>

namespace brevanta {

TEST(ProgramArgumentsTest, SaysWhatTheCommandLineAsksFor)
{
    struct Case {
        std::vector<const char*> arguments;
        std::expected<ProgramRequest, UnknownArgument> expected;
    };
    const auto run = [](std::vector<std::string> links) { return ProgramRequest { .links = std::move(links) }; };
    const ProgramRequest help { .action = ProgramAction::showHelp, .links = {} };
    const ProgramRequest version { .action = ProgramAction::showVersion, .links = {} };
    const ProgramRequest diagnosis { .action = ProgramAction::diagnose, .links = {} };
    const ProgramRequest jsonDiagnosis { ProgramAction::diagnose, DiagnosisFormat::json, {} };
    const Case cases[] = {
        { {}, run({}) },
        { { "--help" }, help },
        { { "-h" }, help },
        { { "--version" }, version },
        { { "--version", "--help" }, version },
        { { "--help", "--version" }, help },
        { { "brevanta://open/A?b=C%2f#d" }, run({ "brevanta://open/A?b=C%2f#d" }) },
        { { "Brevanta:x", "brevanta:" }, run({ "Brevanta:x", "brevanta:" }) },
        { { "brevanta://open/x", "--help" },
            ProgramRequest { .action = ProgramAction::showHelp, .links = { "brevanta://open/x" } } },
        { { "brevanta://open/x", "--bogus" }, std::unexpected(UnknownArgument { "--bogus" }) },
        { { "--diagnose" }, diagnosis },
        { { "--diagnose", "--json" }, jsonDiagnosis },
        { { "--json", "--diagnose" }, jsonDiagnosis },
        { { "--json" }, std::unexpected(UnknownArgument { "--json" }) },
        { { "--version", "--json" }, std::unexpected(UnknownArgument { "--json" }) },
        { { "brevanta" }, std::unexpected(UnknownArgument { "brevanta" }) },
        { { "brevantas://open" }, std::unexpected(UnknownArgument { "brevantas://open" }) },
        { { "https://brevanta:" }, std::unexpected(UnknownArgument { "https://brevanta:" }) },
        { { " brevanta:x" }, std::unexpected(UnknownArgument { " brevanta:x" }) },
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
    for (const auto* argument : { "-h", "--help", "--version", "--diagnose", "--json", "brevanta:" })
        EXPECT_TRUE(programUsage().contains(argument)) << argument;
    EXPECT_TRUE(programUsage().ends_with('\n'));
}

}
