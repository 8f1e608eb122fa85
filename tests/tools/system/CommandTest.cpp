#include "system/CommandLine.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

namespace brevanta::system_tool {

namespace {

std::vector<std::string> words(const std::string& line)
{
    std::istringstream stream(line);
    return { std::istream_iterator<std::string>(stream), {} };
}

std::expected<Command, StandInError> parse(const std::string& line) { return parseCommand(words(line), "7.0"); }

ExtensionRecord copyOf(const char* version, const char* flags)
{
    const std::string_view letters(flags);
    return { .isEnabled = letters.contains('e'),
        .isAwaitingUserApproval = letters.contains('a'),
        .isUninstalling = letters.contains('u'),
        .shortVersion = version,
        .buildVersion = version };
}

// What the lines make of a fresh machine, one after another; nothing when one of them cannot be carried out.
std::optional<FilterStandIn> after(const std::vector<std::string>& lines)
{
    StandInStore::Read<FilterStandIn> state;
    for (const auto& line : lines) {
        const auto command = parse(line);
        if (!command || !std::holds_alternative<FilterChange>(*command)) {
            ADD_FAILURE() << line;
            return std::nullopt;
        }
        state = std::get<FilterChange>(*command)(state);
    }
    return state ? std::optional(*state) : std::nullopt;
}

}

TEST(SystemCommand, CopiesAndConfigurationFollowTheCommands)
{
    constexpr FilterPreferences none {};
    constexpr FilterPreferences on { .isConfigured = true, .isEnabled = true };
    constexpr FilterPreferences off { .isConfigured = true, .isEnabled = false };
    struct Case {
        std::vector<std::string> lines;
        std::vector<ExtensionRecord> copies;
        FilterPreferences configuration;
    };
    const Case cases[] = {
        { { "filter awaiting" }, { copyOf("7.0", "a") }, none },
        { { "filter awaiting", "filter approve" }, { copyOf("7.0", "e") }, none },
        { { "filter on" }, { copyOf("7.0", "e") }, on },
        { { "filter on", "filter off" }, { copyOf("7.0", "e") }, off },
        { { "filter off" }, {}, none },
        { { "filter on", "filter disabled" }, { copyOf("7.0", "") }, on },
        { { "filter on", "filter version 0.9" }, { copyOf("0.9", "e") }, on },
        { { "filter on", "filter version 0.9", "filter uninstalling" }, { copyOf("0.9", "eu") }, on },
        { { "filter on", "filter version 0.9", "filter awaiting" }, { copyOf("0.9", "a") }, on },
        { { "filter on", "filter uninstalling", "filter on" }, { copyOf("7.0", "e") }, on },
        { { "filter on", "filter remove" }, {}, on },
        { { "filter on", "filter requests grant", "filter hang-queries", "filter fresh" }, {}, none },
    };
    for (const auto& [lines, copies, configuration] : cases) {
        const auto state = after(lines);
        ASSERT_TRUE(state) << lines.back();
        EXPECT_EQ(*state, (FilterStandIn { .copies = copies, .configuration = configuration, .behaviour = {} }))
            << lines.back();
    }
    EXPECT_EQ(after({ "filter on", "filter version 0.9 12" })->copies[0].buildVersion, "12");
}

TEST(SystemCommand, TheBehaviourFollowsTheCommands)
{
    struct Case {
        std::vector<std::string> lines;
        FilterBehaviour expected;
    };
    const Case cases[] = {
        { { "filter requests grant" }, { .requests = RequestAnswer::grant } },
        { { "filter requests fail 9" }, { .requests = RequestAnswer::fail, .failureCode = 9 } },
        { { "filter requests fail 9", "filter requests approval" }, { .failureCode = 9 } },
        { { "filter requests reboot" }, { .requests = RequestAnswer::reboot } },
        { { "filter prompt refuse" }, { .prompt = PromptAnswer::refuse } },
        { { "filter fail-queries" }, { .preferences = QueryAnswer::fail, .properties = QueryAnswer::fail } },
        { { "filter hang-queries preferences" }, { .preferences = QueryAnswer::hang } },
        { { "filter hang-queries", "filter answer-queries preferences" }, { .properties = QueryAnswer::hang } },
    };
    for (const auto& [lines, expected] : cases)
        EXPECT_EQ(after(lines)->behaviour, expected) << lines.back();
}

TEST(SystemCommand, WhatTheStateDoesNotAllowIsAnError)
{
    for (const std::vector<std::string>& lines :
        { std::vector<std::string> { "filter approve" }, { "filter on", "filter approve" }, { "filter version 1" },
            { "filter disabled" }, { "filter uninstalling" } })
        EXPECT_EQ(after(lines), std::nullopt) << lines.back();

    const StandInStore::Read<FilterStandIn> damaged = standInError("damaged");
    for (const auto* const line : { "filter on", "filter remove", "filter requests grant", "filter version 1" })
        EXPECT_EQ(std::get<FilterChange>(*parse(line))(damaged), damaged) << line;
    EXPECT_EQ(std::get<FilterChange>(*parse("filter fresh"))(damaged), FilterStandIn());
}

TEST(SystemCommand, TheServiceFollowsTheCommands)
{
    struct Case {
        const char* line;
        ServiceStandIn before;
        ServiceStandIn after;
        ProgramChange program;
    };
    constexpr ServiceStandIn running { .isLoaded = true, .backgroundItem = BackgroundItem::allowed };
    constexpr ServiceStandIn started { .isLoaded = true,
        .backgroundItem = BackgroundItem::allowed,
        .refusals = 2,
        .process = ServiceProcess { .processId = 7, .startTicks = 70 } };
    const Case cases[] = {
        { "service loaded", {}, { .isLoaded = true }, ProgramChange::none },
        { "service unloaded", running, { .backgroundItem = BackgroundItem::allowed }, ProgramChange::none },
        { "service allowed", {}, { .backgroundItem = BackgroundItem::allowed }, ProgramChange::none },
        { "service turned-off", running, { .backgroundItem = BackgroundItem::requiresApproval }, ProgramChange::none },
        { "service installed", running, running, ProgramChange::install },
        { "service missing", running, running, ProgramChange::remove },
        { "service fresh", running, {}, ProgramChange::remove },
        { "service fresh", started, {}, ProgramChange::remove },
        { "service missing", started, started, ProgramChange::remove },
        { "service unloaded", started, { .backgroundItem = BackgroundItem::allowed, .refusals = 2 },
            ProgramChange::none },
        { "service turned-off", started, { .backgroundItem = BackgroundItem::requiresApproval, .refusals = 2 },
            ProgramChange::none },
        { "service refuse-bootstrap 3", running,
            { .isLoaded = true, .backgroundItem = BackgroundItem::allowed, .refusals = 3 }, ProgramChange::none },
        { "service refuse-bootstrap 0", started,
            { .isLoaded = true, .backgroundItem = BackgroundItem::allowed, .refusals = 0, .process = started.process },
            ProgramChange::none },
    };
    for (const auto& [line, before, after, program] : cases) {
        const auto command = parse(line);
        ASSERT_TRUE(command && std::holds_alternative<ServiceCommand>(*command)) << line;
        EXPECT_EQ(std::get<ServiceCommand>(*command).change(before), after) << line;
        EXPECT_EQ(std::get<ServiceCommand>(*command).program, program) << line;
    }
}

TEST(SystemCommand, TheRunningApplicationsFollowTheCommands)
{
    struct Case {
        std::vector<std::string> lines;
        std::optional<std::vector<RunningApplication>> expected; // Nothing when the last one cannot be carried out.
    };
    const Case cases[] = {
        { { "app launch a" }, { { { "a", 1000 } } } },
        { { "app launch a", "app launch a" }, { { { "a", 1000 }, { "a", 1001 } } } },
        { { "app launch a 5000", "app launch b" }, { { { "a", 5000 }, { "b", 5001 } } } },
        { { "app launch a 2147483647", "app launch b" }, { { { "a", 2147483647 }, { "b", 1000 } } } },
        { { "app launch a 7", "app launch b 7" }, std::nullopt },
        { { "app launch a", "app launch b", "app launch a", "app quit a" }, { { { "b", 1001 } } } },
        { { "app launch a", "app quit b" }, std::nullopt },
        { { "app launch a", "app fresh" }, std::vector<RunningApplication>() },
    };
    for (const auto& [lines, expected] : cases) {
        StandInStore::Read<WorkspaceStandIn> state;
        for (const auto& line : lines) {
            const auto command = parse(line);
            ASSERT_TRUE(command && std::holds_alternative<AppChange>(*command)) << line;
            state = std::get<AppChange>(*command)(state);
        }
        ASSERT_EQ(state.has_value(), expected.has_value()) << lines.back();
        EXPECT_EQ(state.value_or(WorkspaceStandIn()).running, expected.value_or(std::vector<RunningApplication>()))
            << lines.back();
    }
    const StandInStore::Read<WorkspaceStandIn> damaged = standInError("damaged");
    EXPECT_EQ(std::get<AppChange>(*parse("app launch a"))(damaged), damaged);
    EXPECT_EQ(std::get<AppChange>(*parse("app fresh"))(damaged), WorkspaceStandIn());
}

TEST(SystemCommand, TheOfferedUpdateFollowsTheCommands)
{
    struct Case {
        const char* line;
        UpdaterStandIn before;
        UpdaterStandIn after;
    };
    const Case cases[] = {
        { "updater offer 2.0", {}, { .offered = "2.0" } },
        { "updater offer 2.0", { .checksAutomatically = false, .offered = "1.0" },
            { .checksAutomatically = false, .offered = "2.0" } },
        { "updater withdraw", { .checksAutomatically = false, .offered = "1.0" }, { .checksAutomatically = false } },
        { "updater fresh", { .checksAutomatically = false, .offered = "1.0" }, {} },
    };
    const StandInStore::Read<UpdaterStandIn> damaged = standInError("damaged");
    for (const auto& [line, before, after] : cases) {
        const auto command = parse(line);
        ASSERT_TRUE(command && std::holds_alternative<UpdaterChange>(*command)) << line;
        EXPECT_EQ(std::get<UpdaterChange>(*command)(before), after) << line;
        EXPECT_EQ(std::get<UpdaterChange>(*command)(damaged).has_value(), std::string_view(line) == "updater fresh")
            << line;
    }
}

TEST(SystemCommand, MistakesAreRefused)
{
    for (const std::string line : { "", "filter", "service", "filters on", "filter ON", "filter on now",
             "filter version", "filter version 1 2 3", "filter requests", "filter requests maybe",
             "filter requests fail", "filter requests fail 0", "filter requests fail -1", "filter requests fail 1x",
             "filter requests fail 99999999999", "filter requests grant 1", "filter prompt", "filter prompt allow it",
             "filter -queries", "filter stop-queries", "filter fail-queries everything",
             "filter fail-queries preferences properties", "service loaded now", "service off",
             "service refuse-bootstrap", "service refuse-bootstrap -1", "service refuse-bootstrap 1 2", "show filter",
             "app", "app launch", "app launch a 0", "app launch a -1", "app launch a 1x", "app launch a 99999999999",
             "app launch a 1 2", "app quit", "app quit a 1", "app fresh now", "app start a", "updater", "updater offer",
             "updater offer 1 2", "updater withdraw 1", "updater fresh now" })
        EXPECT_FALSE(parse(line)) << line;
    for (const std::string line : { "", "show", "--root", "--root show", "--root r", "--roots r show",
             "--root r --x show", "show --root r", "--root r filter" })
        EXPECT_FALSE(CommandLine::parse(words(line), "7.0")) << line;
}

TEST(SystemCommand, TheRootComesBeforeTheCommand)
{
    const auto parsed = CommandLine::parse(words("--root r show"), "7.0");
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->root, "r");
    EXPECT_TRUE(std::holds_alternative<ShowCommand>(parsed->command));
    for (const auto* help : { "--help", "help" })
        EXPECT_EQ(CommandLine::parse({ help }, "7.0")->purpose, CommandLine::Purpose::showHelp);
    EXPECT_EQ(CommandLine::parse({ "--version" }, "7.0")->purpose, CommandLine::Purpose::showVersion);
}

TEST(SystemCommand, TheHelpNamesOnlyCommandsThatThereAre)
{
    std::istringstream usage(commandUsage());
    int commands = 0;
    for (std::string line; std::getline(usage, line); ++commands) {
        auto typed = words(line.substr(0, line.find("  ", 2)));
        // Of alternatives the first, of what may be left out nothing, and a number for what is to be filled in.
        std::erase_if(typed, [](const auto& word) { return word.starts_with('['); });
        for (auto& word : typed) {
            word = word.substr(0, word.find('|'));
            if (std::ranges::all_of(word, [](char c) { return c >= 'A' && c <= 'Z'; }))
                word = "1";
        }
        if (typed.size() == 4 && typed.back() == "1")
            typed.pop_back(); // The code belongs to the last alternative.
        EXPECT_TRUE(parseCommand(typed, "7.0")) << line;
    }
    EXPECT_GT(commands, 20);
}

}
