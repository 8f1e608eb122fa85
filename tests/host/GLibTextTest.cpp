#include "gtk/GLibText.h"

#include <gtest/gtest.h>

namespace brevanta {

TEST(GLibTextTest, ReplacesWhatIsNotUtf8AndNothingElse)
{
    struct Case {
        std::string text;
        std::string valid;
    };
    const Case cases[] = {
        { "", "" }, { "Brevanta — blocking ⚠", "Brevanta — blocking ⚠" }, { "a\xFF z", "a\uFFFD z" },
        { "cut \xE2\x80", "cut \uFFFD\uFFFD" }, { std::string("a\0b", 3), "a\uFFFDb" },
        { "\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD" }, // Half of a surrogate pair.
    };
    for (const auto& [text, valid] : cases)
        EXPECT_EQ(validUtf8(text), valid);
}

TEST(GLibTextTest, DoublesUnderscoresSoThatNoneMarksAMnemonic)
{
    struct Case {
        const char* text;
        const char* label;
    };
    const Case cases[] = {
        { "", "" },
        { "Quit", "Quit" },
        { "_", "__" },
        { "a_b & __c", "a__b & ____c" },
        { "trailing_", "trailing__" },
    };
    for (const auto& [text, label] : cases)
        EXPECT_EQ(withoutMnemonics(text), label);
}

}
