#include "gtk/standin/FilterStandIn.h"
#include "gtk/standin/ServiceStandIn.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

constexpr ExtensionRequestResult completed = ExtensionRequestResult::completed;

const ExtensionRecord bundled { .shortVersion = "2.0", .buildVersion = "200" };

ExtensionRecord copyOf(const char* version, const char* flags)
{
    const std::string_view letters(flags);
    return { .isEnabled = letters.contains('e'),
        .isAwaitingUserApproval = letters.contains('a'),
        .isUninstalling = letters.contains('u'),
        .shortVersion = version,
        .buildVersion = std::string(version) == "2.0" ? "200" : "100" };
}

FilterStandIn standIn(RequestAnswer answer, std::vector<ExtensionRecord> copies, int failureCode = 1)
{
    FilterStandIn result;
    result.copies = std::move(copies);
    result.behaviour.requests = answer;
    result.behaviour.failureCode = failureCode;
    return result;
}

ExtensionRequestEnd failed(int code)
{
    return std::unexpected(FilterError { "OSSystemExtensionErrorDomain", code, {} });
}

}

TEST(FilterStandInTest, AStateIsReadAsItWasWritten)
{
    FilterStandIn full = standIn(RequestAnswer::fail, { copyOf("1.0", "eau"), {} }, 9);
    full.copies[0].shortVersion = "1 \"→\"";
    full.configuration = { .isConfigured = true, .isEnabled = true };
    full.behaviour.prompt = PromptAnswer::refuse;
    full.behaviour.preferences = QueryAnswer::fail;
    full.behaviour.properties = QueryAnswer::hang;
    for (const auto& state : { FilterStandIn(), full })
        EXPECT_EQ(decodeFilterStandIn(encode(state)), state);
    EXPECT_EQ(decodeFilterStandIn("{}"), FilterStandIn()) << "a fresh machine";

    const ServiceStandIn turnedOff { .isLoaded = true, .backgroundItem = BackgroundItem::requiresApproval };
    for (const auto& state : { ServiceStandIn(), turnedOff })
        EXPECT_EQ(decodeServiceStandIn(encode(state)), state);
    EXPECT_EQ(decodeServiceStandIn("{}"), ServiceStandIn());
}

TEST(FilterStandInTest, AMalformedFileIsRefused)
{
    const std::string deep(100'000, '[');
    for (const std::string text : { "", "{", "[]", "null", "{} {}", "{\"copys\": []}", "{\"copies\": {}}",
             "{\"copies\": [1]}", "{\"copies\": [{\"enabled\": 1}]}", "{\"copies\": [{\"shortVersion\": 1}]}",
             "{\"copies\": [{\"shortVersion\": \"\xFF\"}]}", "{\"configuration\": []}",
             "{\"configuration\": {\"enabled\": null}}", "{\"behaviour\": {\"requests\": \"perhaps\"}}",
             "{\"behaviour\": {\"requests\": 1}}", "{\"behaviour\": {\"failureCode\": 0}}",
             "{\"behaviour\": {\"failureCode\": 1.5}}", "{\"behaviour\": {\"failureCode\": 18446744073709551615}}",
             "{\"behaviour\": {\"failureCode\": 2147483648}}" })
        EXPECT_FALSE(decodeFilterStandIn(text)) << text;
    EXPECT_FALSE(decodeFilterStandIn(deep));
    for (const auto* const text : { "", "[]", "{\"loaded\": 1}", "{\"backgroundItem\": \"off\"}", "{\"more\": 1}" })
        EXPECT_FALSE(decodeServiceStandIn(text)) << text;
}

TEST(FilterStandInTest, AnActivationPutsTheBundledCopyInThePlaceOfTheOneThatIsThere)
{
    using enum RequestAnswer;
    const auto leaving = copyOf("1.0", "eu");
    const auto active = copyOf("2.0", "e");
    const auto awaiting = copyOf("2.0", "a");
    struct Case {
        const char* name;
        FilterStandIn before;
        std::vector<ExtensionRecord> copiesAfter;
        std::optional<ExtensionRequestEnd> end;
    };
    const Case cases[] = {
        { "fresh", standIn(approval, {}), { awaiting }, std::nullopt },
        { "fresh, granted", standIn(grant, {}), { active }, completed },
        { "active before", standIn(approval, { copyOf("1.0", "e") }), { active }, completed },
        { "switched off before", standIn(approval, { copyOf("1.0", "") }), { awaiting }, std::nullopt },
        { "awaiting before", standIn(approval, { copyOf("1.0", "a") }), { awaiting }, std::nullopt },
        { "enabled, yet awaiting", standIn(approval, { copyOf("1.0", "ea") }), { awaiting }, std::nullopt },
        { "on its way out", standIn(approval, { leaving }), { leaving, awaiting }, std::nullopt },
        { "on its way out, granted", standIn(grant, { leaving }), { leaving, active }, completed },
        { "reboot", standIn(reboot, { copyOf("1.0", "e") }), { copyOf("1.0", "e") },
            ExtensionRequestResult::willCompleteAfterReboot },
        { "fails", standIn(fail, { copyOf("1.0", "e") }, 8), { copyOf("1.0", "e") }, failed(8) },
    };
    for (const auto& [name, before, copiesAfter, end] : cases) {
        auto expected = before;
        expected.copies = copiesAfter;
        EXPECT_EQ(activate(before, bundled), (ExtensionRequestOutcome { expected, end })) << name;
    }
}

TEST(FilterStandInTest, OnlyACopyThatStaysIsAskedAbout)
{
    const auto present = standIn(RequestAnswer::grant, { copyOf("1.0", "eu"), copyOf("1.0", "a") });
    EXPECT_EQ(copyToReplace(present), &present.copies[1]);
    EXPECT_EQ(copyToReplace(standIn(RequestAnswer::grant, { copyOf("1.0", "eu") })), nullptr);
    EXPECT_EQ(copyToReplace(standIn(RequestAnswer::fail, { copyOf("1.0", "e") })), nullptr);
}

TEST(FilterStandInTest, ADeactivationTakesTheCopiesAway)
{
    using enum RequestAnswer;
    const auto active = copyOf("1.0", "e");
    struct Case {
        FilterStandIn before;
        std::vector<ExtensionRecord> copiesAfter;
        ExtensionRequestEnd end;
    };
    const Case cases[] = { { standIn(approval, { active, copyOf("1.0", "u") }), {}, completed },
        { standIn(grant, { active }), {}, completed }, { standIn(approval, {}), {}, failed(4) },
        { standIn(reboot, { active }), { copyOf("1.0", "eu") }, ExtensionRequestResult::willCompleteAfterReboot },
        { standIn(fail, { active }, 8), { active }, failed(8) } };
    for (const auto& [before, copiesAfter, end] : cases) {
        auto expected = before;
        expected.copies = copiesAfter;
        EXPECT_EQ(deactivate(before), (ExtensionRequestOutcome { expected, end }));
    }
}

TEST(FilterStandInTest, ARequestWaitsUntilACopyIsActiveOrNoneWaitsAnyMore)
{
    struct Case {
        std::vector<ExtensionRecord> copies;
        std::optional<ExtensionRequestEnd> end;
    };
    const Case cases[] = { { { copyOf("1.0", "a") }, std::nullopt }, { { copyOf("1.0", "ea") }, std::nullopt },
        { { copyOf("1.0", "e") }, completed }, { { copyOf("1.0", "u"), copyOf("2.0", "e") }, completed },
        { {}, failed(1) }, { { copyOf("1.0", "au") }, failed(1) }, { { copyOf("1.0", "") }, failed(1) } };
    for (const auto& [copies, end] : cases)
        EXPECT_EQ(endOfApproval(standIn(RequestAnswer::approval, copies)), end);
}

TEST(FilterStandInTest, TheUserIsAskedOfTheFirstConfigurationOnly)
{
    FilterStandIn state;
    state.behaviour.prompt = PromptAnswer::refuse;
    const auto refused = withConfiguration(state);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), (FilterError { "NEFilterErrorDomain", 5, {} }));
    state.configuration.isConfigured = true;
    const auto enabled = withConfiguration(state);
    ASSERT_TRUE(enabled);
    EXPECT_EQ(enabled->configuration, (FilterPreferences { .isConfigured = true, .isEnabled = true }));
    ASSERT_TRUE(withoutConfiguration(*enabled));
    EXPECT_EQ(withoutConfiguration(*enabled)->configuration, FilterPreferences());

    state.behaviour.preferences = QueryAnswer::fail;
    EXPECT_FALSE(preferencesIn(state));
    EXPECT_FALSE(withConfiguration(state));
    EXPECT_FALSE(withoutConfiguration(state));
    EXPECT_TRUE(propertiesIn(state));
    state.behaviour.properties = QueryAnswer::fail;
    EXPECT_FALSE(propertiesIn(state));
}

}
