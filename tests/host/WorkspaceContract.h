#pragma once

#include "platform/Workspace.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace brevanta {

// What holds for every Workspace. A bench gives:
//   Workspace& workspace();
//   void launch(application), quit(application);
//   bool serveUntil(condition);        serves the main loop; false when the condition does not come true
//   void serveForATurn();              serves what is ready now, without waiting
//   void end();                        destroys the workspace
template <typename Bench> class WorkspaceContract : public testing::Test {
protected:
    using Changes = std::vector<std::pair<ApplicationChange, RunningApplication>>;

    void listen(Changes& changes)
    {
        m_bench.workspace().setApplicationHandler(
            [&changes](ApplicationChange change, const RunningApplication& application) {
                changes.emplace_back(change, application);
            });
    }

    Bench m_bench;
    const RunningApplication m_editor { .bundleIdentifier = "com.example.Editor", .processId = 7 };
    const RunningApplication m_mail { .bundleIdentifier = "com.example.Mail", .processId = 8 };
};

TYPED_TEST_SUITE_P(WorkspaceContract);

TYPED_TEST_P(WorkspaceContract, TellsOfLaunchesAndTerminationsOnceAndInOrder)
{
    typename TestFixture::Changes changes;
    this->m_bench.launch(this->m_editor);
    this->listen(changes);
    EXPECT_EQ(this->m_bench.workspace().runningApplications(), std::vector { this->m_editor });
    this->m_bench.launch(this->m_mail);
    EXPECT_TRUE(changes.empty()) << "not inside the call";
    EXPECT_TRUE(this->m_bench.serveUntil([&] { return !changes.empty(); }));
    EXPECT_EQ(this->m_bench.workspace().runningApplications(), (std::vector { this->m_editor, this->m_mail }));
    this->m_bench.quit(this->m_editor);
    EXPECT_TRUE(this->m_bench.serveUntil([&] { return changes.size() == 2; }));
    EXPECT_EQ(this->m_bench.workspace().runningApplications(), std::vector { this->m_mail });
    EXPECT_EQ(changes,
        (typename TestFixture::Changes {
            { ApplicationChange::launched, this->m_mail }, { ApplicationChange::terminated, this->m_editor } }));
}

TYPED_TEST_P(WorkspaceContract, OnlyTheNewestHandlerIsTold)
{
    typename TestFixture::Changes first;
    typename TestFixture::Changes second;
    this->listen(first);
    this->m_bench.launch(this->m_editor);
    this->listen(second);
    this->m_bench.launch(this->m_mail);
    EXPECT_TRUE(this->m_bench.serveUntil([&] { return !second.empty(); }));
    EXPECT_EQ(second, (typename TestFixture::Changes { { ApplicationChange::launched, this->m_mail } }));
    EXPECT_TRUE(first.empty());
}

TYPED_TEST_P(WorkspaceContract, AHandlerMayEndItself)
{
    int told = 0;
    this->m_bench.workspace().setApplicationHandler([&](ApplicationChange, const RunningApplication&) {
        ++told;
        this->m_bench.workspace().setApplicationHandler({});
    });
    this->m_bench.launch(this->m_editor);
    EXPECT_TRUE(this->m_bench.serveUntil([&] { return told > 0; }));
    this->m_bench.quit(this->m_editor);
    typename TestFixture::Changes later;
    this->listen(later);
    this->m_bench.launch(this->m_mail);
    EXPECT_TRUE(this->m_bench.serveUntil([&] { return !later.empty(); }));
    EXPECT_EQ(told, 1);
}

TYPED_TEST_P(WorkspaceContract, NothingIsToldOnceItHasGone)
{
    typename TestFixture::Changes changes;
    this->listen(changes);
    this->m_bench.launch(this->m_editor);
    this->m_bench.end();
    this->m_bench.serveForATurn();
    EXPECT_TRUE(changes.empty());
}

REGISTER_TYPED_TEST_SUITE_P(WorkspaceContract, TellsOfLaunchesAndTerminationsOnceAndInOrder, OnlyTheNewestHandlerIsTold,
    AHandlerMayEndItself, NothingIsToldOnceItHasGone);

}
