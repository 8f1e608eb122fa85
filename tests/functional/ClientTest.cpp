#include "ClientTest.h"

#include "support/LogHygiene.h"

namespace brevanta::functional {

ClientTest::ClientTest(ClientBenchOptions options)
    : m_bench(std::move(options))
{
}

void ClientTest::SetUp()
{
    const auto surroundings = m_bench.startSurroundings();
    ASSERT_TRUE(surroundings) << surroundings.error();
    const auto client = m_bench.startClient();
    ASSERT_TRUE(client) << client.error();
}

void ClientTest::TearDown()
{
    if (HasFailure() && m_bench.hasClient())
        std::cerr << "The client's log:\n" << m_bench.client().log();
    // Whatever a test did: what the whole run has written is fit to be read by anybody.
    if (m_bench.hasClient()) {
        EXPECT_EQ(faultyLines(m_bench.client().wholeLog(), testTokens), std::vector<std::string>());
    }
}

void ClientTest::tell(const std::string& command)
{
    const auto answer = service().command(command);
    EXPECT_TRUE(answer) << answer.error();
}

testing::AssertionResult ClientTest::showsLine(const std::string& label, Milliseconds within)
{
    if (m_bench.menu().awaitLabel(label, within))
        return testing::AssertionSuccess();
    const auto entries = m_bench.menu().read();
    return testing::AssertionFailure() << "no line \"" << label << "\" in the menu:\n"
                                       << (entries ? describeMenu(*entries) : entries.error());
}

testing::AssertionResult ClientTest::showsDescription(const std::string& text, Milliseconds within)
{
    if (m_bench.statusItem().awaitDescription(text, within))
        return testing::AssertionSuccess();
    const auto content = m_bench.statusItem().read();
    if (!content)
        return testing::AssertionFailure() << content.error();
    return testing::AssertionFailure() << "the item's title is \"" << content->title << "\" and its description \""
                                       << content->iconDescription << "\" instead of \"" << text << '"';
}

testing::AssertionResult ClientTest::showsWindows(std::size_t count, Milliseconds within)
{
    if (m_bench.display().awaitWindows(BrevantaClient::windowTitle, count, within))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << m_bench.display().windowsTitled(BrevantaClient::windowTitle).size()
                                       << " windows are shown instead of " << count;
}

std::vector<std::string> ClientTest::visibleLabels()
{
    std::vector<std::string> labels;
    const auto entries = m_bench.menu().read();
    EXPECT_TRUE(entries) << entries.error();
    for (const auto& entry : entries.value_or(MenuEntries {})) {
        if (entry.isVisible)
            labels.push_back(entry.kind == MenuEntryKind::separator ? "-" : entry.label);
    }
    return labels;
}

void ClientTest::click(const std::string& label)
{
    const auto clicked = m_bench.menu().click(label);
    EXPECT_TRUE(clicked) << clicked.error();
}

void ClientTest::expectCleanExit(Milliseconds within)
{
    EXPECT_EQ(m_bench.client().process().awaitExit(within), 0);
    EXPECT_TRUE(m_bench.bus().awaitNoOwner(BrevantaClient::busName, patience));
    EXPECT_TRUE(awaitByAsking([this] { return m_bench.client().process().groupMembers().empty(); }, patience));
}

}
