#include "crash/CrashReporting.h"

#include "crash/CrashEndpoint.h"
#include "daemon/BlockingStatus.h"
#include "fakes/FakeCrashReporter.h"
#include "fakes/FakePorts.h"
#include "platform/Url.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

const std::string endpointText = "https://key@crashes.example/7";

Url endpoint()
{
    return { .text = endpointText,
        .scheme = "https",
        .user = "key",
        .password = {},
        .host = "crashes.example",
        .port = {},
        .path = "/7" };
}

Url endpointWith(const std::function<void(Url&)>& change)
{
    auto url = endpoint();
    change(url);
    return url;
}

class CrashReportingTest : public testing::Test {
protected:
    void start(const std::string& text, const std::string& environment = {})
    {
        reporting.start({ .endpoint = text,
            .environment = environment,
            .usualEnvironment = "production",
            .release = "com.example.Client@1.2.3" });
    }

    [[nodiscard]] std::string scrubbed(std::string_view key, std::string_view text) const
    {
        return reporter.starts.front().scrub(key, text);
    }

    FakeCrashReporter reporter;
    FakeSystemLog log;
    CrashReporting reporting { { .reporter = reporter, .log = log, .parseUrl = [](const std::string& text) {
                                    return text == endpointText ? std::optional(endpoint()) : std::nullopt;
                                } } };
};

}

TEST_F(CrashReportingTest, WithoutAnEndpointThatCanBeUsedNothingIsStartedAndTheLogDoesNotQuoteIt)
{
    start("");
    start("not-a-url-with-a-key");
    EXPECT_TRUE(reporter.starts.empty());
    EXPECT_EQ(log.lines,
        (std::vector<std::string> { "[CrashReporting] no endpoint: crashes are not reported",
            "[CrashReporting] not started: the endpoint cannot be used: it is no URL" }));
}

TEST_F(CrashReportingTest, TheReporterLearnsEverythingAndTheLogNotTheKey)
{
    start(endpointText, "staging");
    ASSERT_EQ(reporter.starts.size(), 1u);
    const auto& options = reporter.starts.front();
    EXPECT_EQ(options.endpoint, endpointText);
    EXPECT_EQ(options.host, "crashes.example");
    EXPECT_EQ(options.environment, "staging");
    EXPECT_EQ(options.release, "com.example.Client@1.2.3");
    EXPECT_EQ(
        log.lines, std::vector<std::string> { "[CrashReporting] started (host=crashes.example, environment=staging)" });
}

TEST_F(CrashReportingTest, AReporterThatDoesNotStartIsTold)
{
    reporter.failure = { .message = "no room" };
    start(endpointText);
    EXPECT_EQ(log.lines, std::vector<std::string> { "[CrashReporting] not started: no room" });
}

TEST_F(CrashReportingTest, TheTokensOfTheSessionAreTakenOutWhereverTheyStand)
{
    start(endpointText);
    auto status = std::make_shared<BlockingStatus>();
    status->authToken = "first-opaque-token";
    reporting.consume(status);
    reporting.addSecret("second-opaque-token");
    EXPECT_EQ(scrubbed("", "xfirst-opaque-tokenx and second-opaque-token"), "x[removed]x and [removed]");
    EXPECT_EQ(scrubbed("headers.Cookie", "chocolate"), "[removed]");
    EXPECT_EQ(scrubbed("http.query", "chocolate"), "[removed]");
    EXPECT_EQ(scrubbed("category", "chocolate"), "chocolate");
}

TEST_F(CrashReportingTest, AReplyThatCannotBeDecodedIsReportedOnceAndErrorsNeverFlood)
{
    const DaemonFailure noJson = JsonParseError { "garbage" };
    reporting.serviceFailed(noJson);
    EXPECT_TRUE(reporter.captured.empty()) << "nobody wants reports";
    start(endpointText);
    for (const DaemonFailure& failure : { noJson, noJson, DaemonFailure(DaemonError {}),
             DaemonFailure(DaemonError { DaemonError::Kind::rejected, "its own words" }),
             DaemonFailure(DaemonError { DaemonError::Kind::invalidResponse, {} }),
             DaemonFailure(StatusDecodingError { .key = "energy" }) })
        reporting.serviceFailed(failure);
    EXPECT_EQ(reporter.captured,
        (std::vector<CapturedError> { { "status", "reply is not JSON: garbage" }, { "status", "invalidResponse" },
            { "status", "reply is no status: \"energy\" is missing" } }));
    for (int number = 0; number < 100; ++number)
        reporting.capture({ .kind = "install", .message = std::to_string(number) });
    EXPECT_EQ(reporter.captured.size(), CrashReporting::mostErrors);
}

TEST_F(CrashReportingTest, TheReporterMayOutliveTheOneWhoStartedIt)
{
    {
        CrashReporting other({ .reporter = reporter, .log = log, .parseUrl = [](const auto&) { return endpoint(); } });
        other.start({ .endpoint = endpointText, .environment = {}, .usualEnvironment = "production", .release = {} });
        other.addSecret("an-opaque-token");
    }
    EXPECT_EQ(scrubbed("", "an-opaque-token"), "[removed]");
}

TEST(CrashEndpointTest, OnlyAnHttpsUrlWithAKeyAndAProjectIsOne)
{
    using Error = CrashEndpointError;
    EXPECT_EQ(crashEndpointHost(endpoint()), "crashes.example");
    EXPECT_EQ(crashEndpointHost(endpointWith([](Url& url) { url.path = "/below/7"; })), "crashes.example");
    EXPECT_EQ(crashEndpointHost(std::nullopt), std::unexpected(Error::noUrl));
    const std::vector<std::pair<std::function<void(Url&)>, Error>> cases {
        { [](Url& url) { url.scheme = "http"; }, Error::notHttps },
        { [](Url& url) { url.host.clear(); }, Error::noHost },
        { [](Url& url) { url.user = std::nullopt; }, Error::noPublicKey },
        { [](Url& url) { url.user = ""; }, Error::noPublicKey },
        { [](Url& url) { url.password = "secret"; }, Error::secretKey },
        { [](Url& url) { url.path = ""; }, Error::noProject },
        { [](Url& url) { url.path = "/below/"; }, Error::noProject },
        { [](Url& url) { url.text += "?x=y"; }, Error::furtherParts },
    };
    for (const auto& [change, error] : cases)
        EXPECT_EQ(crashEndpointHost(endpointWith(change)), std::unexpected(error)) << describe(error);
}

TEST(CrashEndpointTest, AnEnvironmentThatCannotBeTheNameOfOneCountsAsUnset)
{
    const std::vector<std::string> names { "staging", "Staging_2.eu", std::string(64, 'x') };
    for (const auto& name : names)
        EXPECT_EQ(crashEnvironment(name, "usual"), name);
    const std::vector<std::string> others { "", "None", "two words", "a/b", "line\n", std::string(65, 'x') };
    for (const auto& other : others)
        EXPECT_EQ(crashEnvironment(other, "usual"), "usual") << other;
}

}
