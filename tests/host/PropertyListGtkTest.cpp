#include "gtk/PropertyListGtk.h"
#include "functional/support/TemporaryDirectory.h"

#include <fstream>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

constexpr std::string_view heading = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
)";

std::string list(std::string_view entries)
{
    return std::string(heading) + "<plist version=\"1.0\">\n<dict>\n" + std::string(entries) + "\n</dict>\n</plist>\n";
}

}

TEST(PropertyListGtkTest, GivesTheTextsOfTheTopLevelDictionary)
{
    struct Case {
        const char* entries;
        PropertyListTexts expected;
    };
    const Case cases[] = {
        { "", {} },
        { "<key>a</key><string>1</string>\n  <key>b</key>\n<string/>", { { "a", "1" }, { "b", "" } } },
        { "<key>a&amp;b</key><string> &lt;x&#233;<![CDATA[<&]]><!-- no --> </string>", { { "a&b", " <xé<& " } } },
        { "<key>a</key><true/><key>b</key><integer>1</integer><key>c</key><string>x</string>", { { "c", "x" } } },
        { "<key>a</key><dict><key>b</key><string>inner</string></dict><key>c</key><string>x</string>",
            { { "c", "x" } } },
        { "<key>a</key><array><string>inner</string></array><key>b</key><string>x</string>", { { "b", "x" } } },
        { "<key>a</key><string>first</string><key>a</key><string>second</string>", { { "a", "first" } } },
    };
    for (const auto& [entries, expected] : cases)
        EXPECT_EQ(parsePropertyList(list(entries)), expected) << entries;
}

TEST(PropertyListGtkTest, WhatIsNoPropertyListGivesNothing)
{
    const std::string whole = list("<key>a</key><string>1</string>");
    const std::string damages[] = { "", "text", std::string(heading), "bplist00\xD1\x01", "<html><dict/></html>",
        "<plist/>", "<plist><array/></plist>", "<plist><string>x</string></plist>", "<plist><dict/><dict/></plist>",
        list("<string>1</string>"), list("<key>a</key>"), list("<key>a</key><key>b</key><string>1</string>"),
        list("<key>a</key><string>1</string><string>2</string>"), list("<key>a</key><string>1<b/></string>"),
        list("<key>a<b/></key><string>1</string>"), list("<key>a</key><string>\xFF</string>"),
        list("<key>a</key><string>&unknown;</string>"), whole + "<plist><dict/></plist>",
        whole.substr(0, whole.size() / 2), whole.substr(0, whole.size() - 4), whole + '\0' };
    for (const auto& damage : damages)
        EXPECT_EQ(parsePropertyList(damage), std::nullopt) << damage;
}

TEST(PropertyListGtkTest, ReadsRegularFilesUpToTheirGreatestSize)
{
    const functional::TemporaryDirectory folder;
    const auto file = folder.path() / "Info.plist";
    const auto whole = list("<key>a</key><string>1</string>");
    constexpr std::size_t mostBytes = std::size_t { 1 } << 20;
    std::ofstream(file) << whole << std::string(mostBytes - whole.size(), '\n');
    EXPECT_EQ(readPropertyList(file), (PropertyListTexts { { "a", "1" } }));
    std::ofstream(file, std::ios::app) << '\n';
    EXPECT_EQ(readPropertyList(file), std::nullopt);
    EXPECT_EQ(readPropertyList(folder.path()), std::nullopt);
    EXPECT_EQ(readPropertyList(folder.path() / "missing"), std::nullopt);
    EXPECT_EQ(readPropertyList("/dev/zero"), std::nullopt);
}

TEST(PropertyListGtkTest, DeepNestingIsTakenAsItComes)
{
    std::string nested;
    constexpr int depth = 50'000;
    for (int level = 0; level < depth; ++level)
        nested += "<array>";
    for (int level = 0; level < depth; ++level)
        nested += "</array>";
    EXPECT_EQ(parsePropertyList(list("<key>a</key>" + nested + "<key>b</key><string>x</string>")),
        (PropertyListTexts { { "b", "x" } }));
}

}
