#include "functional/support/TemporaryDirectory.h"
#include "gtk/MainLoopGtk.h"
#include "gtk/WorkspaceGtk.h"
#include "host/WorkspaceContract.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>

namespace brevanta {

namespace {

class WorkspaceGtkBench {
public:
    WorkspaceGtkBench() { m_workspace.emplace(m_loop, m_root.path()); }

    Workspace& workspace() { return *m_workspace; }
    void launch(const RunningApplication& application)
    {
        change([&](auto& running) { running.push_back(application); });
    }
    void quit(const RunningApplication& application)
    {
        change([&](auto& running) { std::erase(running, application); });
    }
    bool serveUntil(const std::function<bool()>& condition)
    {
        bool timeIsUp = false;
        const auto guard = m_loop.startTimer(20, TimerRepeat::once, [&] { timeIsUp = true; });
        while (!condition() && !timeIsUp)
            g_main_context_iteration(nullptr, TRUE);
        return condition();
    }
    void serveForATurn()
    {
        while (g_main_context_iteration(nullptr, FALSE)) { }
    }
    void end() { m_workspace.reset(); }

    [[nodiscard]] const std::filesystem::path& root() const { return m_root.path(); }
    void write(const std::string& text) const { std::ofstream(m_store.workspaceFile()) << text; }

private:
    void change(const std::function<void(std::vector<RunningApplication>&)>& step)
    {
        EXPECT_TRUE(m_store.changeWorkspace([&](const auto& current) {
            auto next = current.value_or(WorkspaceStandIn());
            step(next.running);
            return StandInStore::Read<WorkspaceStandIn>(next);
        }));
    }

    functional::TemporaryDirectory m_root;
    StandInStore m_store { m_root.path() };
    MainLoopGtk m_loop;
    std::optional<WorkspaceGtk> m_workspace;
};

// A folder of desktop entries, which GLib looks for when it is first asked.
class DesktopEntries final : public testing::Environment {
public:
    void SetUp() override
    {
        std::filesystem::create_directories(m_data.path() / "applications");
        std::ofstream(m_data.path() / "applications/com.example.Entry.desktop")
            << "[Desktop Entry]\nType=Application\nName=From An Entry\nExec=/bin/true\n";
        g_setenv("XDG_DATA_HOME", m_data.path().c_str(), TRUE);
    }

private:
    functional::TemporaryDirectory m_data;
};

const auto* const desktopEntries = testing::AddGlobalTestEnvironment(new DesktopEntries);

}

INSTANTIATE_TYPED_TEST_SUITE_P(Gtk, WorkspaceContract, WorkspaceGtkBench);

TEST(WorkspaceWatch, ADamagedFileSaysNothing)
{
    WorkspaceGtkBench bench;
    std::vector<std::string> changes;
    bench.workspace().setApplicationHandler([&](ApplicationChange change, const RunningApplication& application) {
        changes.push_back((change == ApplicationChange::launched ? "+" : "-") + application.bundleIdentifier);
    });
    bench.launch({ "a", 1 });
    ASSERT_TRUE(bench.serveUntil([&] { return changes.size() == 1; }));
    for (const std::string text :
        { "", "[]", R"({"running": 1})", R"({"running": [1]})", R"({"running": [{"pid": 1}]})",
            R"({"running": [{"bundleIdentifier": "a"}]})", R"({"running": [{"bundleIdentifier": "", "pid": 1}]})",
            R"({"running": [{"bundleIdentifier": "a", "pid": 0}]})",
            R"({"running": [{"bundleIdentifier": "a", "pid": 1}, {"bundleIdentifier": "b", "pid": 1}]})",
            R"({"running": [], "more": 1})" }) {
        bench.write(text);
        EXPECT_TRUE(bench.workspace().runningApplications().empty()) << text;
        bench.serveForATurn();
    }
    bench.write(R"({"running": [{"bundleIdentifier": "a", "pid": 1}, {"bundleIdentifier": "b", "pid": 2}]})");
    ASSERT_TRUE(bench.serveUntil([&] { return changes.size() == 2; }));
    EXPECT_EQ(changes, (std::vector<std::string> { "+a", "+b" })) << "the first one ran all the time";
}

TEST(WorkspaceWatch, NamesComeFromTheRootsBundlesAndThenFromDesktopEntries)
{
    const WorkspaceGtkBench bench;
    const auto bundle = [&](const std::string& folder, const std::string& identifier, const std::string& names) {
        const auto contents = bench.root() / "Applications" / folder / "Contents";
        std::filesystem::create_directories(contents);
        std::ofstream(contents / "Info.plist") << "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>"
                                               << identifier << "</string>" << names << "</dict></plist>";
    };
    MainLoopGtk loop;
    const WorkspaceGtk workspace(loop, bench.root());
    EXPECT_EQ(workspace.displayNameOf("com.example.Full"), std::nullopt) << "there is no folder yet";
    bundle("A.app", "com.example.Full",
        "<key>CFBundleName</key><string>Short</string><key>CFBundleDisplayName</key><string>Displayed</string>");
    bundle("B.app", "com.example.Short",
        "<key>CFBundleDisplayName</key><string></string><key>CFBundleName</key><string>Short</string>");
    bundle("C.app", "com.example.Nameless", "");
    bundle("D", "com.example.NoBundle", "<key>CFBundleName</key><string>No</string>");
    struct Case {
        std::string identifier;
        std::optional<std::string> expected;
    };
    const Case cases[] = { { "com.example.Full", "Displayed" }, { "com.example.Short", "Short" },
        { "com.example.Nameless", std::nullopt }, { "com.example.NoBundle", std::nullopt },
        { "com.example.Entry", "From An Entry" }, { "com.example.Missing", std::nullopt }, { "", std::nullopt },
        { "../applications/com.example.Entry", std::nullopt },
        { std::string("com.example.Entry\0", 18), std::nullopt } };
    for (const auto& [identifier, expected] : cases)
        EXPECT_EQ(workspace.displayNameOf(identifier), expected) << identifier;
}

}
