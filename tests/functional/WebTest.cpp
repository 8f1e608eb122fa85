#include "WebTest.h"

#include <fstream>
#include <sstream>

namespace brevanta::functional {

void WebTest::tellWeb(const std::string& command)
{
    const auto answer = web().command(command);
    EXPECT_TRUE(answer) << answer.error();
}

testing::AssertionResult WebTest::showsPage()
{
    if (web().awaitTrue("window.demo !== undefined", pagePatience))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the demo application is not there";
}

testing::AssertionResult WebTest::logs(const std::string& text, Milliseconds within)
{
    if (bench().client().process().errors().awaitText(text, within))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the log has no \"" << text << '"';
}

std::size_t WebTest::lineCount(const std::string& text)
{
    std::istringstream lines(bench().client().log());
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line);)
        count += line.contains(text) ? 1U : 0U;
    return count;
}

testing::AssertionResult WebTest::awaitLines(const std::string& text, std::size_t count)
{
    if (awaitUntil([&] { return lineCount(text) == count; }, pagePatience))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << lineCount(text) << " lines have \"" << text << "\" instead of " << count;
}

void WebTest::listenFor(const std::string& event)
{
    const auto answer = web().evaluate("(window.heard = window.heard || [], window.addEventListener('" + event
        + "', (e) => window.heard.push({ name: e.type, detail: e.detail })), true)");
    EXPECT_EQ(answer, "true");
}

void WebTest::post(const std::string& message)
{
    const auto answer = web().evaluate("(window.webkit.messageHandlers.kestrelune.postMessage(" + message + "), true)");
    EXPECT_EQ(answer, "true");
}

void WebTest::killWebProcess() { EXPECT_TRUE(bench().client().killWebProcess(patience)) << "there is no web process"; }

std::vector<std::string> WebTest::openedOutside()
{
    std::ifstream file(bench().client().openedUrlsFile());
    std::vector<std::string> urls;
    for (std::string line; std::getline(file, line);)
        urls.push_back(line);
    return urls;
}

}
