#include "ClientTest.h"

namespace brevanta::functional {

using MenuTest = ClientTest;

static testing::AssertionResult isVisible(const MenuEntries& entries, const std::string& label)
{
    const auto* entry = findEntry(entries, label);
    if (!entry)
        return testing::AssertionFailure() << '"' << label << "\" is not in the menu";
    return entry->isVisible ? testing::AssertionSuccess() : testing::AssertionFailure() << label << " is hidden";
}

TEST_F(MenuTest, listsItsItemsInOrder)
{
    ASSERT_TRUE(showsLine("Blocking: Inactive (42.00 Coins)"));
    auto labels = visibleLabels();
    ASSERT_EQ(labels.size(), 10u);
    // What the lines about the filter and the service say depends on their health.
    EXPECT_NE(labels[4].find("Content Filter"), std::string::npos) << labels[4];
    EXPECT_NE(labels[5].find("Blocking Service"), std::string::npos) << labels[5];
    labels.erase(labels.begin() + 4, labels.begin() + 6);
    const std::vector<std::string> expected { "Open Brevanta", "Brevanta 0.121.0", "Check for Updates…", "Reload", "-",
        "Blocking: Inactive (42.00 Coins)", "-", "Quit" };
    EXPECT_EQ(labels, expected);
}

TEST_F(MenuTest, onlyWhatCanBeChosenIsEnabled)
{
    ASSERT_TRUE(showsLine("Blocking: Inactive (42.00 Coins)"));
    const auto entries = bench().menu().read();
    ASSERT_TRUE(entries) << entries.error();
    for (const auto* label : { "Open Brevanta", "Check for Updates…", "Reload", "Quit" }) {
        ASSERT_TRUE(isVisible(*entries, label));
        EXPECT_TRUE(findEntry(*entries, label)->isEnabled) << label;
    }
    for (const auto* label : { "Brevanta 0.121.0", "Blocking: Inactive (42.00 Coins)" }) {
        ASSERT_TRUE(isVisible(*entries, label));
        EXPECT_FALSE(findEntry(*entries, label)->isEnabled) << label;
    }
    EXPECT_FALSE(isVisible(*entries, "Restart Blocking Service…"));
}

TEST_F(MenuTest, menuAndStatusItemFollowTheService)
{
    ASSERT_TRUE(showsLine("Blocking: Inactive (42.00 Coins)"));
    ASSERT_TRUE(showsDescription(notBlocking));
    const auto before = bench().statusItem().read();
    ASSERT_TRUE(before) << before.error();

    tell("energy 12.345");
    tell("block on situation");
    tell("task Write the report 0");
    ASSERT_TRUE(showsLine("Blocking: Active (12.35 Coins)")) << "two decimals, rounded";
    EXPECT_TRUE(showsDescription(blocking));
    const auto during = bench().statusItem().read();
    ASSERT_TRUE(during) << during.error();
    EXPECT_NE(during->iconName, before->iconName);
    auto labels = visibleLabels();
    const std::vector<std::string> state(labels.end() - 6, labels.end());
    EXPECT_EQ(state[0], "-");
    EXPECT_EQ(state[2], "Active: Write the report");
    EXPECT_EQ(state[3], "Reason: situation");

    tell("block off");
    tell("task none");
    ASSERT_TRUE(showsLine("Blocking: Inactive (12.35 Coins)"));
    EXPECT_TRUE(showsDescription(notBlocking));
    const auto after = bench().statusItem().read();
    ASSERT_TRUE(after) << after.error();
    EXPECT_EQ(after->iconName, before->iconName);
    EXPECT_EQ(visibleLabels().size(), labels.size() - 2) << "the task and the reason are gone";
}

TEST_F(MenuTest, aTaskTitleIsShownAsItStands)
{
    // An underscore marks a mnemonic in this kind of menu unless it is doubled.
    tell(R"(set active_task_title "snake_case & <b>__init__</b> ✓")");
    EXPECT_TRUE(showsLine("Active: snake_case & <b>__init__</b> ✓"));
}

TEST_F(MenuTest, clickingWhatCannotBeChosenDoesNothing)
{
    ASSERT_TRUE(showsLine("Blocking: Inactive (42.00 Coins)"));
    ASSERT_TRUE(showsWindows(1));
    bench().display().pressCloseButton(bench().display().windowsTitled(BrevantaClient::windowTitle).front());
    ASSERT_TRUE(showsWindows(0));
    const auto labels = visibleLabels();
    const auto entries = bench().menu().read();
    ASSERT_TRUE(entries) << entries.error();
    std::size_t clicked = 0;
    for (const auto& entry : *entries) {
        if (entry.isEnabled && entry.isVisible && entry.kind != MenuEntryKind::separator)
            continue;
        EXPECT_TRUE(bench().menu().clickEntry(entry.id)) << entry.label;
        ++clicked;
    }
    EXPECT_GE(clicked, 6u) << "separators, version, state and the three hidden lines";
    ASSERT_TRUE(service().awaitHandledPolls(1));
    EXPECT_TRUE(bench().client().process().isRunning());
    EXPECT_EQ(visibleLabels(), labels);
    EXPECT_TRUE(showsWindows(0));
    EXPECT_EQ(service().requestCount("force_sync"), 0u);
    EXPECT_EQ(service().requestCount("queue_removal"), 0u);
}

}
