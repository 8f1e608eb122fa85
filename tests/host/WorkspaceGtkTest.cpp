#include "gtk/WorkspaceGtk.h"
#include "fakes/FakeMainLoop.h"
#include "functional/support/TemporaryDirectory.h"

#include <fstream>
#include <gtest/gtest.h>
#include <vector>

namespace brevanta {

namespace {

class WorkspaceGtkTest : public testing::Test {
protected:
    [[nodiscard]] auto recorder()
    {
        return [this](OpenOutcome outcome) { m_outcomes.push_back(outcome); };
    }

    FakeClock m_clock;
    FakeMainLoop m_loop { m_clock };
    WorkspaceGtk m_workspace { m_loop };
    std::vector<OpenOutcome> m_outcomes;
};

}

TEST_F(WorkspaceGtkTest, RefusesAMalformedUrlOnceAndAfterTheCall)
{
    for (const auto& url :
        { std::string(), std::string("no scheme"), std::string("//host/path"), std::string("http://a b/"),
            std::string("http://[::1"), std::string("http://a/\0b", 11), std::string(" https://a/") }) {
        m_outcomes.clear();
        m_workspace.openUrl(url, recorder());
        EXPECT_TRUE(m_outcomes.empty()) << url;
        m_loop.runPosted();
        EXPECT_EQ(m_outcomes, std::vector { OpenOutcome::refused }) << url;
    }
}

TEST_F(WorkspaceGtkTest, RefusesAPathThatIsNoFolderOnceAndAfterTheCall)
{
    const functional::TemporaryDirectory folder;
    const auto file = folder.path() / "file";
    std::ofstream(file) << "x";
    for (const auto& path : { std::string(), file.string(), (folder.path() / "missing").string(), std::string("."),
             folder.path().string() + '\0' + "x" }) {
        m_outcomes.clear();
        m_workspace.openFolder(path, recorder());
        EXPECT_TRUE(m_outcomes.empty()) << path;
        m_loop.runPosted();
        EXPECT_EQ(m_outcomes, std::vector { OpenOutcome::refused }) << path;
    }
}

}
