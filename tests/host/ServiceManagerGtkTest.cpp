#include "gtk/ServiceManagerGtk.h"
#include "fakes/FakeMainLoop.h"
#include "functional/support/TemporaryDirectory.h"

#include <fstream>
#include <gtest/gtest.h>
#include <optional>

namespace brevanta {

namespace {

class ServiceManagerGtkTest : public testing::Test {
protected:
    ServiceManagerGtkTest()
    {
        std::filesystem::create_directories(m_root.path() / "var/db");
        m_manager.emplace(m_loop, m_root.path());
    }

    void ask()
    {
        m_manager->checkLaunch([this](auto check) { m_checks.push_back(check); });
        m_manager->readBackgroundItem([this](auto item) { m_items.push_back(item); });
    }

    functional::TemporaryDirectory m_root;
    std::filesystem::path m_program { m_root.path() / "Library/PrivilegedHelperTools/com.brevanta.daemon" };
    FakeClock m_clock;
    FakeMainLoop m_loop { m_clock };
    std::optional<ServiceManagerGtk> m_manager;
    std::vector<std::optional<LaunchCheck>> m_checks;
    std::vector<BackgroundItem> m_items;
};

}

TEST_F(ServiceManagerGtkTest, TellsWhatLaunchdAndTheProgramFileSay)
{
    struct Case {
        std::optional<std::string> file;
        bool isInstalled;
        std::optional<LaunchCheck> launch;
        BackgroundItem item;
    };
    const Case cases[] = {
        { std::nullopt, false, LaunchCheck::notInstalled, BackgroundItem::unknown },
        { std::nullopt, true, LaunchCheck::notRunning, BackgroundItem::unknown },
        { R"({"loaded": true, "backgroundItem": "allowed"})", true, LaunchCheck::loaded, BackgroundItem::allowed },
        { R"({"loaded": true})", false, LaunchCheck::loaded, BackgroundItem::allowed },
        { R"({"loaded": false, "backgroundItem": "requiresApproval"})", true, LaunchCheck::notRunning,
            BackgroundItem::requiresApproval },
        { R"({"loaded": true, "backgroundItem": 1})", true, std::nullopt, BackgroundItem::unknown },
        { "", false, std::nullopt, BackgroundItem::unknown },
    };
    for (const auto& [file, isInstalled, launch, item] : cases) {
        std::filesystem::remove_all(m_root.path() / "Library");
        std::filesystem::remove(m_root.path() / "var/db/launchd.json");
        if (file)
            std::ofstream(m_root.path() / "var/db/launchd.json") << *file;
        if (isInstalled) {
            std::filesystem::create_directories(m_program.parent_path());
            std::ofstream(m_program) << "#!/bin/sh\n";
        }
        m_checks.clear();
        m_items.clear();
        ask();
        EXPECT_TRUE(m_checks.empty() && m_items.empty()) << "not inside the call";
        m_loop.runPosted();
        EXPECT_EQ(m_checks, std::vector { launch }) << file.value_or("no file");
        EXPECT_EQ(m_items, std::vector { item }) << file.value_or("no file");
        EXPECT_EQ(m_manager->isProgramInstalled(), isInstalled);
    }
    std::filesystem::remove_all(m_program);
    std::filesystem::create_directories(m_program);
    EXPECT_FALSE(m_manager->isProgramInstalled()) << "a folder is no program";
}

TEST_F(ServiceManagerGtkTest, NothingIsToldOnceItHasGone)
{
    ask();
    m_manager.reset();
    m_loop.runPosted();
    EXPECT_TRUE(m_checks.empty() && m_items.empty());
}

}
