#include "install/DaemonUpgradePolicy.h"

#include <gtest/gtest.h>
#include <ostream>

namespace brevanta::DaemonUpgradePolicy {

namespace {

constexpr const char* noVersion = "";

}

TEST(DaemonUpgradePolicy, AServiceIsReplacedOnlyByOneThatIsSurelyNewer)
{
    struct Case {
        std::optional<std::string> installed;
        std::string bundled;
        Decision expected;
    };
    for (const auto& [installed, bundled, expected] : std::initializer_list<Case> {
             { "1.3", "1.3", Current { "1.3" } },
             { "1.2", "1.2.0", Current { "1.2" } },
             { "1.2.0.0", "1.2", Current { "1.2.0.0" } },
             { "01.002", "1.2", Current { "01.002" } },
             { "0", "0.0", Current { "0" } },
             { " 1.3\n", "1.3", Current { "1.3" } },
             { "1.3", "\t1.3\r\n", Current { "1.3" } },
             { "9223372036854775807", "9223372036854775807", Current { "9223372036854775807" } },

             { "2.9", "2.10", Upgrade { "2.9", "2.10" } },
             { "1.2", "1.2.0.1", Upgrade { "1.2", "1.2.0.1" } },
             { " 1.2 ", " 1.3 ", Upgrade { "1.2", "1.3" } },
             { "1.9.9", "2", Upgrade { "1.9.9", "2" } },
             { std::nullopt, "1.3", Upgrade { std::nullopt, "1.3" } },

             { "2.10", "2.9", NewerInstalled { "2.10", "2.9" } },
             { "1.0.1", "1", NewerInstalled { "1.0.1", "1" } },
             { "9223372036854775807", "1", NewerInstalled { "9223372036854775807", "1" } },

             { "1.3-beta", "1.3", Unknown { "1.3-beta", "1.3" } },
             { noVersion, "1.3", Unknown { noVersion, "1.3" } },
             { " \n", "1.3", Unknown { " \n", "1.3" } },
             { ".", "1.3", Unknown { ".", "1.3" } },
             { ".1", "1.3", Unknown { ".1", "1.3" } },
             { "1.", "1.3", Unknown { "1.", "1.3" } },
             { "1..2", "1.3", Unknown { "1..2", "1.3" } },
             { "1. 2", "1.3", Unknown { "1. 2", "1.3" } },
             { "-1", "1.3", Unknown { "-1", "1.3" } },
             { "+1", "1.3", Unknown { "+1", "1.3" } },
             { "0x1", "1.3", Unknown { "0x1", "1.3" } },
             { "١", "1.3", Unknown { "١", "1.3" } },
             { std::string("1\0", 2), "1.3", Unknown { std::string("1\0", 2), "1.3" } },
             { "9223372036854775808", "1.3", Unknown { "9223372036854775808", "1.3" } },
             { "1.2", "dev", Unknown { "1.2", "dev" } },
             { std::nullopt, "dev", Unknown { noVersion, "dev" } },
             { std::nullopt, noVersion, Unknown { noVersion, noVersion } },
         }) {
        const auto decision = decide(installed, bundled);
        EXPECT_EQ(decision, expected) << describe(decision) << ", wanted " << describe(expected);
    }
}

TEST(DaemonUpgradePolicy, EveryDecisionIsToldInTheLogAndTheMenu)
{
    struct Case {
        Decision decision;
        std::string log;
        std::string title;
    };
    for (const auto& [decision, log, title] :
        std::initializer_list<Case> {
            { Current { "1.3" }, "[DaemonUpgrade] daemon 1.3 is current", "✓ Blocking Service 1.3" },
            { Upgrade { "1.2", "1.3" },
                "[DaemonUpgrade] daemon 1.2 is older than the bundled 1.3: offering the admin-prompt reinstall",
                "⚠ Update Blocking Service to 1.3…" },
            { Upgrade { std::nullopt, "1.3" },
                "[DaemonUpgrade] daemon pre-6151 (no version) is older than the bundled 1.3: offering the admin-prompt "
                "reinstall",
                "⚠ Update Blocking Service to 1.3…" },
            { NewerInstalled { "1.4", "1.3" },
                "[DaemonUpgrade] daemon 1.4 is newer than the bundled 1.3: leaving it alone",
                "✓ Blocking Service 1.4" },
            { Unknown { "1.3-beta", "1.3" },
                "[DaemonUpgrade] cannot compare daemon '1.3-beta' with bundled '1.3': leaving it alone",
                "✓ Blocking Service" },
        }) {
        EXPECT_EQ(describe(decision), log);
        EXPECT_EQ(menuTitle(decision), title);
    }
}

TEST(DaemonUpgradePolicy, TheOfferNamesTheInstalledVersionIfThereIsOne)
{
    EXPECT_EQ(promptText({ .installed = "1.2", .bundled = "1.3" }),
        "Brevanta 1.3 is installed, but the blocking service on this Mac is still version 1.2. Updating it takes a few "
        "seconds and asks for your administrator password.");
    EXPECT_EQ(promptText({ .installed = std::nullopt, .bundled = "1.3" }),
        "Brevanta 1.3 is installed, but the blocking service on this Mac is an older version. Updating it takes a few "
        "seconds and asks for your administrator password.");
}

}
