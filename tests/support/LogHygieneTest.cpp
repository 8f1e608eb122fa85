#include "support/LogHygiene.h"

#include <gtest/gtest.h>

namespace brevanta {

TEST(LogHygieneTest, FindsWhatMayNotStandInALogAndNothingElse)
{
    constexpr std::array<std::string_view, 1> secrets { "tok-1" };
    const auto faults = [&](std::string_view log) { return faultyLines(log, secrets); };
    using Lines = std::vector<std::string>;
    EXPECT_EQ(faults("[MenuBar] a\nauth_token_invalid: signalled\nWeb Inspector on\n[WebViewBridge] b\n"), Lines());
    EXPECT_EQ(faults("[MenuBar] a\n[MenuBar] took tok-1x\n"), Lines { "[MenuBar] took tok-1x" });
    EXPECT_EQ(faults("[MenuBar] half, tok-1"), Lines { "[MenuBar] half, tok-1" }) << "a line that is still written";
    EXPECT_EQ(faults("[Menu"), Lines());
    EXPECT_EQ(faults("Source/WebKit/X.cpp(1)\n"), Lines());
    EXPECT_EQ(faults("Source/WebKit/X.cpp: tok-1\n"), Lines { "Source/WebKit/X.cpp: tok-1" });
    for (const std::string line : { "no tag", " [MenuBar] a", "[Menubar] a", "[MenuBar]a", "[MenuBar] ", "[MenuBar]",
             "", "MenuBar: a", "(Brevanta:1): Gtk-WARNING **: a" })
        EXPECT_EQ(faults(line + "\n"), Lines { line });
}

}
