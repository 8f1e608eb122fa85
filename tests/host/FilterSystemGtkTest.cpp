#include "gtk/FilterSystemGtk.h"
#include "functional/support/TemporaryDirectory.h"
#include "gtk/MainLoopGtk.h"
#include "gtk/PropertyListGtk.h"
#include "host/FilterSystemContract.h"

#include <fstream>
#include <gtest/gtest.h>
#include <optional>

namespace brevanta {

namespace {

using Ends = std::vector<ExtensionRequestEnd>;

constexpr auto builtContents = BREVANTA_BUILT_BUNDLE "/Contents";

class FilterSystemGtkBench {
public:
    explicit FilterSystemGtkBench(std::vector<ExtensionRecord> copies = { { .isEnabled = true } })
    {
        change([&](FilterStandIn& standIn) { standIn.copies = std::move(copies); });
        begin();
    }

    FilterSystem& system() { return *m_system; }
    void carryOutRequest() { }
    void begin(const std::filesystem::path& contents = builtContents)
    {
        m_system.emplace(m_loop, m_root.path(), contents);
    }
    void end() { m_system.reset(); }

    bool serveUntil(const std::function<bool()>& condition)
    {
        bool timeIsUp = false;
        const auto guard = m_loop.startTimer(20, TimerRepeat::once, [&] { timeIsUp = true; });
        while (!condition() && !timeIsUp)
            g_main_context_iteration(nullptr, TRUE);
        return condition();
    }

    void serveForATurn()
    {
        while (g_main_context_iteration(nullptr, FALSE)) { }
    }

    [[nodiscard]] const StandInStore& store() const { return m_store; }
    [[nodiscard]] const std::filesystem::path& root() const { return m_root.path(); }

    void change(const std::function<void(FilterStandIn&)>& step)
    {
        EXPECT_TRUE(m_store.changeFilter([&](const auto& current) {
            auto next = current.value_or(FilterStandIn());
            step(next);
            return StandInStore::Read<FilterStandIn>(next);
        }));
    }

private:
    functional::TemporaryDirectory m_root;
    StandInStore m_store { m_root.path() };
    MainLoopGtk m_loop;
    std::optional<FilterSystemGtk> m_system;
};

class FilterSystemGtkTest : public testing::Test {
protected:
    [[nodiscard]] ExtensionRequestObserver observer(Ends& ends)
    {
        return { .replacing =
                     [this](const ExtensionRecord& existing, const ExtensionRecord& bundled) {
                         m_existing.push_back(existing);
                         m_bundled.push_back(bundled);
                         return m_replacement;
                     },
            .needsUserApproval = [this] { ++m_approvalsNeeded; },
            .ended = [&ends](const auto& end) { ends.push_back(end); } };
    }

    [[nodiscard]] bool awaitApprovalRequest()
    {
        m_bench.system().requestActivation(observer(m_ends));
        return m_bench.serveUntil([this] { return m_approvalsNeeded == 1; });
    }

    // What the system has been asked before this has been begun with.
    void settle()
    {
        bool answered = false;
        m_bench.system().queryProperties([&](const auto&) { answered = true; });
        EXPECT_TRUE(m_bench.serveUntil([&] { return answered; }));
        m_bench.serveForATurn();
    }

    // The exit status of the tool.
    [[nodiscard]] int runTool(std::vector<std::string> words) const
    {
        words.insert(words.begin(), { BREVANTA_SYSTEM_TOOL, "--root", m_bench.root().string() });
        std::vector<char*> arguments;
        for (auto& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        int status = -1;
        EXPECT_TRUE(g_spawn_sync(nullptr, arguments.data(), nullptr, G_SPAWN_STDERR_TO_DEV_NULL, nullptr, nullptr,
            nullptr, nullptr, &status, nullptr));
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    [[nodiscard]] std::vector<ExtensionRecord> copies() const { return m_bench.store().filter()->copies; }

    FilterSystemGtkBench m_bench { {} };
    ExtensionReplacement m_replacement { ExtensionReplacement::replace };
    std::vector<ExtensionRecord> m_existing;
    std::vector<ExtensionRecord> m_bundled;
    int m_approvalsNeeded { 0 };
    Ends m_ends;
};

}

INSTANTIATE_TYPED_TEST_SUITE_P(Gtk, FilterSystemContract, FilterSystemGtkBench);

TEST_F(FilterSystemGtkTest, ARequestOnAFreshMachineEndsWhenACommandApprovesIt)
{
    ASSERT_TRUE(awaitApprovalRequest());
    const auto bundled = m_bench.system().bundledExtension();
    ASSERT_TRUE(bundled);
    auto expected = *bundled;
    expected.isAwaitingUserApproval = true;
    EXPECT_EQ(copies(), std::vector { expected });
    m_bench.change([](FilterStandIn& standIn) { standIn.configuration.isConfigured = true; });
    settle();
    EXPECT_TRUE(m_ends.empty());

    ASSERT_EQ(runTool({ "filter", "approve" }), 0);
    ASSERT_TRUE(m_bench.serveUntil([this] { return !m_ends.empty(); }));
    settle();
    EXPECT_EQ(m_ends, Ends { ExtensionRequestResult::completed });
    EXPECT_EQ(m_approvalsNeeded, 1);
    EXPECT_TRUE(m_existing.empty());
    expected.isAwaitingUserApproval = false;
    expected.isEnabled = true;
    EXPECT_EQ(copies(), std::vector { expected });
    EXPECT_TRUE(m_bench.store().filter()->configuration.isConfigured);
    EXPECT_EQ(runTool({ "filter", "approve" }), 1) << "nothing waits any more";
}

TEST_F(FilterSystemGtkTest, TheObserverDecidesWhetherAnExistingCopyIsReplaced)
{
    const ExtensionRecord old { .isEnabled = true, .shortVersion = "0.1", .buildVersion = "1" };
    m_bench.change([&](FilterStandIn& standIn) { standIn.copies = { old }; });
    m_replacement = ExtensionReplacement::cancel;
    m_bench.system().requestActivation(observer(m_ends));
    settle();
    EXPECT_EQ(m_existing, std::vector { old });
    EXPECT_EQ(m_bundled, std::vector { *m_bench.system().bundledExtension() });
    EXPECT_EQ(copies(), std::vector { old });

    m_replacement = ExtensionReplacement::replace;
    m_bench.system().requestActivation(observer(m_ends));
    settle();
    EXPECT_EQ(m_ends,
        (Ends {
            std::unexpected(extensionError(FilterSystem::requestCanceledCode)), ExtensionRequestResult::completed }));
    ASSERT_EQ(copies().size(), 1U);
    EXPECT_EQ(copies()[0].shortVersion, m_bundled[0].shortVersion);
    EXPECT_EQ(m_approvalsNeeded, 0);
}

TEST_F(FilterSystemGtkTest, RequestsEndAsTheyAreToldTo)
{
    const auto answerWith = [this](RequestAnswer answer) {
        m_bench.change([=](FilterStandIn& standIn) {
            standIn.behaviour.requests = answer;
            standIn.behaviour.failureCode = 8;
        });
    };
    answerWith(RequestAnswer::fail);
    m_bench.system().requestActivation(observer(m_ends));
    settle();
    answerWith(RequestAnswer::reboot);
    m_bench.system().requestActivation(observer(m_ends));
    settle();
    answerWith(RequestAnswer::grant);
    m_bench.system().requestActivation(observer(m_ends));
    m_bench.system().requestDeactivation(observer(m_ends));
    settle();
    EXPECT_EQ(m_ends,
        (Ends { std::unexpected(extensionError(8)), ExtensionRequestResult::willCompleteAfterReboot,
            ExtensionRequestResult::completed, ExtensionRequestResult::completed }));
    EXPECT_TRUE(copies().empty());

    m_bench.begin(m_bench.root());
    EXPECT_EQ(m_bench.system().bundledExtension(), std::nullopt);
    m_bench.system().requestActivation(observer(m_ends));
    settle();
    ASSERT_EQ(m_ends.size(), 5U);
    EXPECT_EQ(m_ends[4], std::unexpected(extensionError(4))) << "there is no extension in the bundle";
}

TEST_F(FilterSystemGtkTest, AWaitingRequestIsSupersededByTheNextOne)
{
    Ends later;
    ASSERT_TRUE(awaitApprovalRequest());
    m_bench.system().requestActivation(observer(later));
    EXPECT_TRUE(m_ends.empty()) << "not inside the call";
    ASSERT_TRUE(m_bench.serveUntil([this] { return m_approvalsNeeded == 2; }));
    EXPECT_EQ(m_ends, Ends { std::unexpected(extensionError(FilterSystem::requestSupersededCode)) });
    ASSERT_EQ(runTool({ "filter", "approve" }), 0);
    ASSERT_TRUE(m_bench.serveUntil([&] { return !later.empty(); }));
    EXPECT_EQ(later, Ends { ExtensionRequestResult::completed });
    EXPECT_EQ(m_ends.size(), 1U);
}

TEST_F(FilterSystemGtkTest, AWaitingRequestOutlastsADamagedFileAndFailsWhenItsCopyGoes)
{
    // A question that hangs is answered as soon as the change of the file has been noticed.
    m_bench.change([](FilterStandIn& standIn) { standIn.behaviour.preferences = QueryAnswer::hang; });
    ASSERT_TRUE(awaitApprovalRequest());
    const auto before = *m_bench.store().filter();
    bool isNoticed = false;
    m_bench.system().loadPreferences([&](const auto& answer) { isNoticed = !answer; });
    m_bench.serveForATurn();
    std::ofstream(m_bench.store().filterFile()) << "{";
    ASSERT_TRUE(m_bench.serveUntil([&] { return isNoticed; }));
    EXPECT_TRUE(m_ends.empty());
    m_bench.change([&](FilterStandIn& standIn) { standIn = before; });
    ASSERT_EQ(runTool({ "filter", "remove" }), 0);
    ASSERT_TRUE(m_bench.serveUntil([this] { return !m_ends.empty(); }));
    EXPECT_EQ(m_ends, Ends { std::unexpected(extensionError(1)) });
}

TEST_F(FilterSystemGtkTest, TheConfigurationIsStoredBesideWhatOthersStore)
{
    std::vector<std::expected<void, FilterError>> ends;
    std::vector<std::expected<FilterPreferences, FilterError>> preferences;
    const auto record = [&](const auto& end) { ends.push_back(end); };
    const auto load
        = [&] { m_bench.system().loadPreferences([&](const auto& answer) { preferences.push_back(answer); }); };
    load();
    m_bench.system().enable(record);
    load();
    settle();
    ASSERT_EQ(runTool({ "filter", "off" }), 0);
    ASSERT_EQ(runTool({ "filter", "awaiting" }), 0);
    load();
    m_bench.system().removeConfiguration(record);
    m_bench.system().removeConfiguration(record);
    load();
    settle();
    EXPECT_EQ(ends, (std::vector<std::expected<void, FilterError>>(3)));
    EXPECT_EQ(preferences,
        (std::vector<std::expected<FilterPreferences, FilterError>> { FilterPreferences {},
            FilterPreferences { true, true }, FilterPreferences { true, false }, FilterPreferences {} }));
    EXPECT_EQ(copies().size(), 1U);

    ASSERT_EQ(runTool({ "filter", "prompt", "refuse" }), 0);
    m_bench.system().enable(record);
    settle();
    EXPECT_EQ(ends.back(), std::unexpected(FilterError { "NEFilterErrorDomain", 5, {} }));
    EXPECT_EQ(m_bench.store().filter()->configuration, FilterPreferences());
}

TEST_F(FilterSystemGtkTest, WhatHangsIsAnsweredOnceThatEnds)
{
    m_bench.change([](FilterStandIn& standIn) {
        standIn.behaviour.preferences = QueryAnswer::hang;
        standIn.behaviour.properties = QueryAnswer::hang;
    });
    std::vector<std::string> answered;
    m_bench.system().loadPreferences([&](const auto& answer) { answered.emplace_back(answer ? "load" : "failure"); });
    m_bench.system().enable([&](const auto& answer) { answered.emplace_back(answer ? "enable" : "failure"); });
    m_bench.system().queryProperties([&](const auto& answer) { answered.emplace_back(answer ? "query" : "failure"); });
    // Requests do not hang with it, and come after what was asked before.
    m_bench.system().requestDeactivation(observer(m_ends));
    ASSERT_TRUE(m_bench.serveUntil([this] { return !m_ends.empty(); }));
    EXPECT_EQ(runTool({ "filter", "requests", "grant" }), 0);
    m_bench.system().requestActivation(observer(m_ends));
    ASSERT_TRUE(m_bench.serveUntil([this] { return m_ends.size() == 2; }));
    EXPECT_TRUE(answered.empty());

    ASSERT_EQ(runTool({ "filter", "fail-queries", "properties" }), 0);
    ASSERT_TRUE(m_bench.serveUntil([&] { return !answered.empty(); }));
    EXPECT_EQ(answered, std::vector<std::string> { "failure" });
    ASSERT_EQ(runTool({ "filter", "answer-queries" }), 0);
    ASSERT_TRUE(m_bench.serveUntil([&] { return answered.size() == 3; }));
    m_bench.serveForATurn();
    EXPECT_EQ(answered, (std::vector<std::string> { "failure", "load", "enable" }));
}

TEST_F(FilterSystemGtkTest, AMalformedFileFailsEverythingAndIsKept)
{
    std::ofstream(m_bench.store().filterFile()) << "no JSON";
    std::vector<FilterError> errors;
    const auto record = [&](const auto& answer) { errors.push_back(answer ? FilterError() : answer.error()); };
    m_bench.system().loadPreferences(record);
    m_bench.system().enable(record);
    m_bench.system().removeConfiguration(record);
    m_bench.system().queryProperties(record);
    m_bench.system().requestActivation({ .replacing = {}, .needsUserApproval = {}, .ended = record });
    m_bench.system().requestDeactivation({ .replacing = {}, .needsUserApproval = {}, .ended = record });
    ASSERT_TRUE(m_bench.serveUntil([&] { return errors.size() == 6; }));
    for (const auto& error : errors)
        EXPECT_EQ(error.domain, "BrevantaStandInErrorDomain") << error.message;
    EXPECT_EQ(runTool({ "filter", "on" }), 1);
    EXPECT_EQ(runTool({ "show" }), 1);
    EXPECT_EQ(runTool({ "filter", "fresh" }), 0);
    EXPECT_EQ(m_bench.store().filter(), FilterStandIn());
}

TEST_F(FilterSystemGtkTest, NothingIsToldOnceItHasGoneWhileItWaits)
{
    ASSERT_TRUE(awaitApprovalRequest());
    ASSERT_EQ(runTool({ "filter", "hang-queries" }), 0);
    m_bench.system().loadPreferences([](const auto&) { ADD_FAILURE(); });
    m_bench.serveForATurn();
    m_bench.end();
    ASSERT_EQ(runTool({ "filter", "on" }), 0);
    ASSERT_EQ(runTool({ "filter", "answer-queries" }), 0);

    // It may go while it asks, too. By the time the second system is answered, the first would have been told.
    m_bench.begin();
    m_bench.system().requestActivation({ .replacing =
                                             [this](const auto&, const auto&) {
                                                 m_bench.end();
                                                 return ExtensionReplacement::replace;
                                             },
        .needsUserApproval = {},
        .ended = [this](const auto& end) { m_ends.push_back(end); } });
    m_bench.serveForATurn();
    m_bench.begin();
    settle();
    EXPECT_TRUE(m_ends.empty());
}

TEST_F(FilterSystemGtkTest, TheBuiltBundlesExtensionHasTheApplicationsVersion)
{
    const auto application = readPropertyList(std::filesystem::path(builtContents) / "Info.plist");
    ASSERT_TRUE(application);
    const auto bundled = m_bench.system().bundledExtension();
    ASSERT_TRUE(bundled);
    EXPECT_EQ(bundled->shortVersion, application->find("CFBundleShortVersionString")->second);
    EXPECT_EQ(bundled->buildVersion, application->find("CFBundleVersion")->second);
    EXPECT_FALSE(bundled->isEnabled);
}

}
