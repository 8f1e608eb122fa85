#include "install/InstallScript.h"

#include <gtest/gtest.h>

namespace brevanta {

TEST(InstallScript, OnAMacItIsThisText)
{
    const std::string beforeTheLock = "(umask 077; : >> '/Library/Application Support/Kestrelune.removal.lock')"
                                      " && chmod 600 '/Library/Application Support/Kestrelune.removal.lock'"
                                      " && '/usr/bin/lockf' -s -k -t 120"
                                      " '/Library/Application Support/Kestrelune.removal.lock' /bin/sh -c ";
    const std::string insideTheLock =
        // Nothing happens during a removal.
        "if [ -e '/Library/Application Support/Kestrelune.removing' ]"
        " || [ -L '/Library/Application Support/Kestrelune.removing' ]; then"
        " echo 'Brevanta began removing its blocking service from this Mac while the password window was open, so "
        "nothing was reinstalled.' >&2; exit 79; fi; "
        // 1. Earlier releases are cleaned out.
        "(launchctl bootout system/com.kestrelune.daemon 2>/dev/null || true) && "
        "(launchctl bootout system/com.kestrelune.daemon.dev 2>/dev/null || true) && "
        "(launchctl bootout system/com.kestrelune.helper 2>/dev/null || true) && "
        "(launchctl bootout system/com.brevanta.helper 2>/dev/null || true) && "
        "(rm -f '/Library/LaunchDaemons/com.kestrelune.daemon.plist'"
        " '/Library/LaunchDaemons/com.kestrelune.daemon.dev.plist'"
        " '/Library/LaunchDaemons/com.kestrelune.helper.plist'"
        " '/Library/LaunchDaemons/com.brevanta.helper.plist' || true) && "
        "(rm -f '/Library/PrivilegedHelperTools/com.kestrelune.daemon'"
        " '/Library/PrivilegedHelperTools/com.kestrelune.daemon.dev'"
        " '/Library/PrivilegedHelperTools/com.kestrelune.helper'"
        " '/Library/PrivilegedHelperTools/com.brevanta.helper' || true) && "
        // 2. The files are placed.
        "mkdir -p /Library/PrivilegedHelperTools && "
        "{ rm -rf '/Library/PrivilegedHelperTools/com.brevanta.daemon.installing'"
        " && cp '/Users/o'\\''neil/B.app/daemon' '/Library/PrivilegedHelperTools/com.brevanta.daemon.installing'"
        " && (xattr -d com.apple.quarantine '/Library/PrivilegedHelperTools/com.brevanta.daemon.installing'"
        " 2>/dev/null || true)"
        " && chmod 755 '/Library/PrivilegedHelperTools/com.brevanta.daemon.installing'"
        " && chown root:wheel '/Library/PrivilegedHelperTools/com.brevanta.daemon.installing'"
        " && { [ ! -d '/Library/PrivilegedHelperTools/com.brevanta.daemon' ]"
        " || rm -rf '/Library/PrivilegedHelperTools/com.brevanta.daemon'; }"
        " && mv -f '/Library/PrivilegedHelperTools/com.brevanta.daemon.installing'"
        " '/Library/PrivilegedHelperTools/com.brevanta.daemon'"
        " || { rc=$?; rm -rf '/Library/PrivilegedHelperTools/com.brevanta.daemon.installing'; exit $rc; }; } && "
        "{ rm -rf '/Library/LaunchDaemons/com.brevanta.daemon.plist.installing'"
        " && cp '/Users/o'\\''neil/B.app/daemon.plist' '/Library/LaunchDaemons/com.brevanta.daemon.plist.installing'"
        " && (xattr -d com.apple.quarantine '/Library/LaunchDaemons/com.brevanta.daemon.plist.installing'"
        " 2>/dev/null || true)"
        " && chmod 644 '/Library/LaunchDaemons/com.brevanta.daemon.plist.installing'"
        " && chown root:wheel '/Library/LaunchDaemons/com.brevanta.daemon.plist.installing'"
        " && { [ ! -d '/Library/LaunchDaemons/com.brevanta.daemon.plist' ]"
        " || rm -rf '/Library/LaunchDaemons/com.brevanta.daemon.plist'; }"
        " && mv -f '/Library/LaunchDaemons/com.brevanta.daemon.plist.installing'"
        " '/Library/LaunchDaemons/com.brevanta.daemon.plist'"
        " || { rc=$?; rm -rf '/Library/LaunchDaemons/com.brevanta.daemon.plist.installing'; exit $rc; }; } && "
        "mkdir -p '/Library/Application Support/Kestrelune' && "
        // 3. The old service is stopped.
        "{ (launchctl bootout system/com.brevanta.daemon 2>/dev/null || true); "
        "i=0; while launchctl print system/com.brevanta.daemon >/dev/null 2>&1; do i=$((i+1)); "
        "if [ $i -ge 100 ]; then break; fi; sleep 0.1; done; "
        // 4. The new one is started.
        "n=0; while :; do launchctl bootstrap system '/Library/LaunchDaemons/com.brevanta.daemon.plist' && break; "
        "rc=$?; if [ $rc -ne 5 ]; then exit $rc; fi; n=$((n+1)); if [ $n -ge 20 ]; then "
        "echo 'launchd did not accept the blocking service after 20 attempts over about 5 seconds (Input/output "
        "error, the previous service is still registered). Choose Restart Blocking Service from the menu to try "
        "again.' >&2; exit $rc; fi; sleep 0.25; done; }";
    const std::string behindTheLock = " || { rc=$?; if [ $rc -eq 75 ]; then"
                                      " echo 'Brevanta is still removing its blocking service from this Mac. Try "
                                      "again in a minute.' >&2; fi; exit $rc; }";

    const auto script = installScript({
        .bundledProgram = "/Users/o'neil/B.app/daemon",
        .bundledPropertyList = "/Users/o'neil/B.app/daemon.plist",
    });
    EXPECT_EQ(script, beforeTheLock + shellQuoted(insideTheLock) + behindTheLock);
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
