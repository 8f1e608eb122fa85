#include "ClientTest.h"

#include "support/FileContents.h"

#include <fstream>
#include <iterator>
#include <sstream>

namespace brevanta::functional {

class CrashReportingTest : public ClientTest {
protected:
    CrashReportingTest()
        : ClientTest({ .preparations = { "energy 42" }, .variables = { { "SENTRY_ENVIRONMENT", "nightly" } } })
    {
    }

    // The lines that begin with the tag of a component; the desktop's own libraries write others.
    [[nodiscard]] std::vector<std::string> logLines()
    {
        std::vector<std::string> lines;
        std::istringstream log(bench().client().log());
        for (std::string line; std::getline(log, line);) {
            if (line.starts_with('['))
                lines.push_back(line);
        }
        return lines;
    }

    // As a build with this endpoint would be.
    void setEndpoint(const std::string& endpoint)
    {
        const auto file = bench().client().root() / "Applications/Brevanta.app/Contents/Info.plist";
        auto dictionary = contentsOf(file);
        const std::string key = "<key>BrevantaCrashEndpoint</key>";
        const auto begin = dictionary.find("<string>", dictionary.find(key));
        ASSERT_NE(begin, std::string::npos) << dictionary;
        dictionary.replace(begin, dictionary.find("</string>", begin) - begin, "<string>" + endpoint);
        std::ofstream(file) << dictionary;
    }

    [[nodiscard]] std::filesystem::path record() { return bench().client().root() / "crash-reporter.json"; }
};

TEST_F(CrashReportingTest, itStartsBeforeAllElseInTheEnvironmentThatIsAskedFor)
{
    setEndpoint("https://the-key@crashes.example/7");
    const auto restarted = bench().restartClient();
    ASSERT_TRUE(restarted) << restarted.error();
    const auto lines = logLines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), "[CrashReporting] started (host=crashes.example, environment=nightly)");
    EXPECT_EQ(contentsOf(record()),
        R"({"environment":"nightly","host":"crashes.example","release":"com.brevanta.KestreluneMac@0.121.0"})");
    EXPECT_FALSE(bench().client().log().contains("the-key"));
}

}
