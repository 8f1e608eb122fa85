#include "install/InstallScript.h"

#include <gtest/gtest.h>

namespace brevanta {

TEST(InstallScript, OnAMacThePathsAreTheSystemsOwn)
{
    const auto script = installScript({ .bundledProgram = "/B.app/daemon", .bundledPropertyList = "/B.app/list" });
    for (const auto* path : { " /Library/PrivilegedHelperTools ", "/Library/PrivilegedHelperTools/com.brevanta.daemon'",
             "/Library/LaunchDaemons/com.brevanta.daemon.plist'",
             "'/Library/Application Support/Kestrelune.removal.lock'",
             "/Library/Application Support/Kestrelune.removing'", "/Library/Application Support/Kestrelune'",
             "'/usr/bin/lockf' -s -k -t 120 " })
        EXPECT_TRUE(script.contains(path)) << path;
    EXPECT_FALSE(script.contains("//"));
}

TEST(InstallScript, AWordForTheShellIsInSingleQuotes)
{
    struct Case {
        std::string text;
        std::string word;
    };
    for (const auto& [text, word] : std::initializer_list<Case> {
             { "", "''" },
             { "plain", "'plain'" },
             { "it's", R"('it'\''s')" },
             { "'", R"(''\''')" },
             { R"(a "b" $c `d` \e !f)", R"('a "b" $c `d` \e !f')" },
             { "é\n\t\xFF", "'é\n\t\xFF'" },
         })
        EXPECT_EQ(shellQuoted(text), word);
}

}
