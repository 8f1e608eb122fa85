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

    void observe()
    {
        m_manager->observe([this](const ServiceObservation& observation) { m_observations.push_back(observation); });
    }

    functional::TemporaryDirectory m_root;
    std::filesystem::path m_program { m_root.path() / "Library/PrivilegedHelperTools/com.brevanta.daemon" };
    FakeClock m_clock;
    FakeMainLoop m_loop { m_clock };
    std::optional<ServiceManagerGtk> m_manager;
    std::vector<ServiceObservation> m_observations;
};

}

TEST_F(ServiceManagerGtkTest, TellsWhatLaunchdAndTheProgramFileSay)
{
    struct Case {
        std::optional<std::string> file;
        bool isInstalled;
        ServiceObservation expected;
    };
    const Case cases[] = {
        { std::nullopt, false, { LaunchCheck::notInstalled, BackgroundItem::unknown } },
        { std::nullopt, true, { LaunchCheck::notRunning, BackgroundItem::unknown } },
        { R"({"loaded": true, "backgroundItem": "allowed"})", true, { LaunchCheck::loaded, BackgroundItem::allowed } },
        { R"({"loaded": true})", false, { LaunchCheck::loaded, BackgroundItem::unknown } },
        { R"({"loaded": false, "backgroundItem": "requiresApproval"})", true,
            { LaunchCheck::notRunning, BackgroundItem::requiresApproval } },
        { R"({"loaded": true, "backgroundItem": 1})", true, { LaunchCheck::notRunning, BackgroundItem::unknown } },
        { "", false, { LaunchCheck::notInstalled, BackgroundItem::unknown } },
    };
    for (const auto& [file, isInstalled, expected] : cases) {
        std::filesystem::remove_all(m_root.path() / "Library");
        std::filesystem::remove(m_root.path() / "var/db/launchd.json");
        if (file)
            std::ofstream(m_root.path() / "var/db/launchd.json") << *file;
        if (isInstalled) {
            std::filesystem::create_directories(m_program.parent_path());
            std::ofstream(m_program) << "#!/bin/sh\n";
        }
        m_observations.clear();
        observe();
        EXPECT_TRUE(m_observations.empty()) << "not inside the call";
        m_loop.runPosted();
        EXPECT_EQ(m_observations, std::vector { expected }) << file.value_or("no file");
        EXPECT_EQ(m_manager->isProgramInstalled(), isInstalled);
    }
    std::filesystem::remove_all(m_program);
    std::filesystem::create_directories(m_program);
    EXPECT_FALSE(m_manager->isProgramInstalled()) << "a folder is no program";
}

TEST_F(ServiceManagerGtkTest, NothingIsToldOnceItHasGone)
{
    observe();
    m_manager.reset();
    m_loop.runPosted();
    EXPECT_TRUE(m_observations.empty());
}

}
