#include "base/Text.h"

#include <clocale>
#include <gtest/gtest.h>

namespace brevanta {

TEST(Text, FixedNumbersReadTheSameInEveryLocale)
{
    const char* const before = std::setlocale(LC_NUMERIC, nullptr);
    const std::string previous = before ? before : "C";
    // A machine without German locale data still checks the rounding.
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    struct Case {
        double number;
        int decimals;
        const char* text;
    };
    for (const auto& [number, decimals, text] : { Case { 42, 2, "42.00" }, { 0.005, 2, "0.01" }, { 2.5, 0, "2" },
             { 3.5, 0, "4" }, { -0.001, 2, "-0.00" }, { 1234567.891, 2, "1234567.89" }, { 7.6, 0, "8" } })
        EXPECT_EQ(formatFixed(number, decimals), text);
    EXPECT_EQ(formatFixed(1e308, 2).size(), 312u);
    std::setlocale(LC_NUMERIC, previous.c_str());
}

TEST(Text, ControlCharactersCannotBreakALine)
{
    EXPECT_EQ(singleLine("one\ntwo\r\n\tthree\x7F"), "one two   three ");
    EXPECT_EQ(singleLine("Grüße — 焦点"), "Grüße — 焦点");
}

TEST(Text, ATextIsNeverClippedInsideOfACharacter)
{
    EXPECT_EQ(clipped("焦点", 6), "焦点");
    EXPECT_EQ(clipped("焦点", 5), "焦…");
    EXPECT_EQ(clipped("焦点", 2), "…");
}

TEST(Text, CodePointsAreCountedRatherThanBytes)
{
    EXPECT_EQ(codePointCount(""), 0u);
    EXPECT_EQ(codePointCount("aé焦😀"), 4u);
}

}
