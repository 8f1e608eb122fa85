#include "WebTest.h"

#include <fstream>
#include <nlohmann/json.hpp>

namespace brevanta::functional {

namespace {

constexpr auto filterIsOn = "✓ Content Filter";
constexpr auto filterIsOff = "⚠ Content Filter: Off";
constexpr auto approveFilter = "⚠ Approve Content Filter in System Settings…";
constexpr auto installFilter = "⚠ Install Content Filter…";
constexpr auto serviceIsCurrent = "✓ Blocking Service 0.121.0";
constexpr auto installService = "⚠ Install Blocking Service…";
constexpr auto restartService = "⚠ Restart Blocking Service…";
constexpr auto serviceIsTurnedOff = "⚠ Blocking Service Turned Off in System Settings…";

constexpr auto filterNotice = "pf-switched-off-contentFilter";
constexpr auto serviceNotice = "pf-switched-off-blockingService";

constexpr auto approvalAlert = "Approve the Brevanta content filter";
constexpr auto updateOffer = "Update the blocking service";

// Longer than a question to the system is waited for.
constexpr Milliseconds slowly { 25000 };

// The two protective components as the user, the system and the service change them around the client.
class ComponentsTest : public WebTest {
protected:
    void SetUp() override
    {
        WebTest::SetUp();
        system({ "service", "installed" });
        system({ "service", "loaded" });
        system({ "service", "allowed" });
    }

    void system(const std::vector<std::string>& command)
    {
        const auto changed = bench().client().changeSystem(command);
        EXPECT_TRUE(changed) << changed.error();
    }

    // What the last request told the service of the filter, once it is this.
    [[nodiscard]] testing::AssertionResult reports(const std::string& state)
    {
        std::string last;
        const bool reported = awaitByAsking(
            [&] {
                last = service().command("last-request").value_or("");
                const auto request = nlohmann::json::parse(last, nullptr, false);
                const auto report = request.is_object() ? request.find("filter_health") : request.end();
                return request.is_object() && report != request.end() && report->value("state", "") == state;
            },
            patience);
        return reported ? testing::AssertionSuccess() : testing::AssertionFailure() << last;
    }

    [[nodiscard]] nlohmann::json sharedState()
    {
        std::ifstream file(bench().client().sharedStateFile());
        return nlohmann::json::parse(file, nullptr, false);
    }

    // The file that the filter reads carries this value, at once or in time.
    [[nodiscard]] testing::AssertionResult shares(const std::string& key, const nlohmann::json& value)
    {
        if (awaitByAsking(
                [&] { return sharedState().is_object() && sharedState().value(key, nlohmann::json()) == value; },
                patience))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << sharedState().dump();
    }

    [[nodiscard]] testing::AssertionResult tellsOfSwitchingOff(const std::string& notice, std::size_t times)
    {
        // Two more polls, so that one too many would be there.
        EXPECT_TRUE(service().isRunning() ? service().awaitHandledPolls(2) : true);
        if ((times == 0 || bench().notifications().await(notice, times))
            && bench().notifications().identified(notice).size() == times)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << bench().notifications().describe();
    }

    [[nodiscard]] testing::AssertionResult showsAlerts(const std::string& message, std::size_t count)
    {
        if (bench().display().awaitWindows(message, count, patience))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "not " << count << " alerts \"" << message << "\" are shown";
    }
};

}

TEST_F(ComponentsTest, theFilterIsFollowedFromItsInstallToItsSwitchingOffAndOn)
{
    ASSERT_TRUE(showsLine(installFilter));
    EXPECT_TRUE(reports("off"));

    click(installFilter);
    ASSERT_TRUE(showsLine(approveFilter));
    EXPECT_TRUE(reports("awaitingApproval"));
    EXPECT_TRUE(showsAlerts(approvalAlert, 1));
    click(approveFilter);
    EXPECT_TRUE(awaitByAsking([&] { return openedOutside().size() == 1; }, patience));
    EXPECT_TRUE(openedOutside().front().starts_with("x-apple.systempreferences:com.apple.ExtensionsPreferences"));

    system({ "filter", "approve" });
    ASSERT_TRUE(showsLine(filterIsOn));
    EXPECT_TRUE(showsAlerts(approvalAlert, 0)) << "there is nothing to approve any more";
    EXPECT_TRUE(reports("on"));

    system({ "filter", "off" });
    ASSERT_TRUE(showsLine(filterIsOff));
    EXPECT_TRUE(reports("off"));
    EXPECT_TRUE(tellsOfSwitchingOff(filterNotice, 1));

    system({ "filter", "on" });
    ASSERT_TRUE(showsLine(filterIsOn));
    EXPECT_TRUE(reports("on"));
    EXPECT_TRUE(tellsOfSwitchingOff(filterNotice, 1));
    EXPECT_FALSE(bench().client().log().contains("daemon answered the filter report")) << "all were accepted";
}

TEST_F(ComponentsTest, aFilterThatCannotBeAskedForIsSaidToBeSo)
{
    system({ "filter", "requests", "grant" });
    ASSERT_TRUE(showsLine(installFilter));
    click(installFilter);
    ASSERT_TRUE(showsLine(filterIsOn));
    system({ "filter", "fail-queries" });
    EXPECT_TRUE(showsLine("Content Filter: Can't check"));
    EXPECT_TRUE(reports("cantCheck"));
    system({ "filter", "answer-queries" });
    EXPECT_TRUE(showsLine(filterIsOn));
    system({ "filter", "hang-queries" });
    EXPECT_TRUE(showsLine("Content Filter: Checking…", slowly));
    system({ "filter", "answer-queries" });
    EXPECT_TRUE(showsLine(filterIsOn, slowly));
    EXPECT_TRUE(tellsOfSwitchingOff(filterNotice, 0));
}

TEST_F(ComponentsTest, eachStateOfTheServiceHasItsLineAndTheFileKeepsWhatWasKnown)
{
    ASSERT_TRUE(showsLine(serviceIsCurrent));
    tell("block on situation");
    EXPECT_TRUE(shares("shouldBlock", true));
    EXPECT_TRUE(shares("authToken", "stand-in-token"));
    EXPECT_EQ(std::filesystem::status(bench().client().sharedStateFile()).permissions(),
        std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);

    tell("misbehave silence");
    EXPECT_TRUE(showsLine(restartService, slowly)) << "it hangs";
    tell("behave");
    EXPECT_TRUE(showsLine(serviceIsCurrent));

    service().kill();
    system({ "service", "unloaded" });
    EXPECT_TRUE(showsLine(restartService)) << "it is gone";
    system({ "service", "turned-off" });
    EXPECT_TRUE(showsLine(serviceIsTurnedOff));
    EXPECT_TRUE(tellsOfSwitchingOff(serviceNotice, 1));
    click(serviceIsTurnedOff);
    EXPECT_TRUE(awaitByAsking([&] { return openedOutside().size() == 1; }, patience));
    system({ "service", "missing" });
    EXPECT_TRUE(showsLine(installService));
    EXPECT_TRUE(shares("shouldBlock", true)) << "the filter goes on by what it knows";

    system({ "service", "installed" });
    system({ "service", "allowed" });
    ASSERT_TRUE(service().start());
    EXPECT_TRUE(showsLine(serviceIsCurrent));
    EXPECT_TRUE(shares("shouldBlock", false));
    EXPECT_TRUE(tellsOfSwitchingOff(serviceNotice, 1));
}

TEST_F(ComponentsTest, anOlderServiceLeadsToOneOffer)
{
    ASSERT_TRUE(showsLine(serviceIsCurrent));
    tell("version 9.0");
    EXPECT_TRUE(showsLine("✓ Blocking Service 9.0")) << "newer";
    tell("version 0.120.9");
    ASSERT_TRUE(showsLine("⚠ Update Blocking Service to 0.121.0…"));
    EXPECT_TRUE(logs("[DaemonUpgrade] daemon 0.120.9 is older than the bundled 0.121.0: offering the admin-prompt "
                     "reinstall"));
    ASSERT_TRUE(showsAlerts(updateOffer, 1));
    bench().display().pressCloseButton(bench().display().windowsTitled(updateOffer).front());
    ASSERT_TRUE(showsAlerts(updateOffer, 0));
    tell("version none");
    EXPECT_TRUE(logs("daemon pre-6151 (no version) is older"));
    ASSERT_TRUE(service().awaitHandledPolls(2));
    EXPECT_TRUE(showsAlerts(updateOffer, 0)) << "it was offered";
}

TEST_F(ComponentsTest, theSharedFileIsPutBackWhenSomebodyTakesItAway)
{
    ASSERT_TRUE(shares("shouldBlock", false));
    std::filesystem::remove(bench().client().sharedStateFile());
    EXPECT_TRUE(shares("shouldBlock", false));
    std::ofstream(bench().client().sharedStateFile()) << "{";
    EXPECT_TRUE(shares("shouldBlock", false));
}

}
