#include "gtk/ConfinedBrowsers.h"

#include "functional/support/TemporaryDirectory.h"

#include <fstream>
#include <gtest/gtest.h>

namespace brevanta {

TEST(ConfinedBrowsers, AreThoseWithAFolderOfTheirSandbox)
{
    const functional::TemporaryDirectory home;
    EXPECT_TRUE(confinedBrowsers(home.path()).empty());
    for (const auto* const folder : { "snap/firefox", "snap/chromium/common", ".var/app/com.google.Chrome/config" })
        std::filesystem::create_directories(home.path() / folder);
    std::ofstream(home.path() / ".var/app/com.brave.Browser") << "no folder";
    EXPECT_EQ(
        confinedBrowsers(home.path()), (std::vector<std::string> { "Chromium (Snap)", "Google Chrome (Flatpak)" }));
}

}
