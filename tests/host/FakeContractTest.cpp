#include "fakes/FakeAdministrator.h"
#include "fakes/FakeFileStore.h"
#include "fakes/FakeFilterSystem.h"
#include "fakes/FakeMainLoop.h"
#include "fakes/FakePorts.h"
#include "host/AdministratorContract.h"
#include "host/FileStoreContract.h"
#include "host/FilterSystemContract.h"
#include "host/MainLoopContract.h"
#include "host/UserDefaultsContract.h"
#include "host/WorkspaceContract.h"

#include <optional>

namespace brevanta {

namespace {

class FakeMainLoopBench {
public:
    FakeMainLoopBench() { m_loop.emplace(m_clock); }

    MainLoop& loop() { return *m_loop; }
    [[nodiscard]] double now() const { return m_clock.continuousSeconds(); }
    bool serveUntil(const std::function<bool()>& condition)
    {
        for (int step = 0; step < 1000 && !condition(); ++step)
            m_loop->advance(0.001);
        return condition();
    }
    void serveForATurn() { m_loop->advance(0); }
    void stall(double seconds) { m_clock.setContinuousSeconds(m_clock.continuousSeconds() + seconds); }
    void end() { m_loop.reset(); }

private:
    FakeClock m_clock;
    std::optional<FakeMainLoop> m_loop;
};

class FakeFilterSystemBench {
public:
    FakeFilterSystemBench() { m_system.emplace(m_loop); }

    FilterSystem& system() { return *m_system; }
    void carryOutRequest() { m_system->requests.back().askWhetherToReplace({}, {}); }
    bool serveUntil(const std::function<bool()>& condition)
    {
        m_loop.runPosted();
        return condition();
    }
    void serveForATurn() { m_loop.runPosted(); }
    void end() { m_system.reset(); }

private:
    FakeClock m_clock;
    FakeMainLoop m_loop { m_clock };
    std::optional<FakeFilterSystem> m_system;
};

class FakeAdministratorBench {
public:
    FakeAdministratorBench()
    {
        m_administrator.emplace(m_loop);
        m_administrator->ends.isHeld = true;
    }

    Administrator& administrator() { return *m_administrator; }
    void givePassword()
    {
        // What a shell would make of the scripts of the contract.
        const auto& script = m_administrator->runs.back().script;
        if (script.starts_with("echo"))
            m_administrator->ends.answerOldest("written");
        else
            m_administrator->ends.answerOldest(
                std::unexpected(AdministratorError { AdministratorError::Kind::scriptFailed, "reason", 3 }));
    }
    void cancel()
    {
        m_administrator->ends.answerOldest(
            std::unexpected(AdministratorError { .kind = AdministratorError::Kind::cancelled }));
    }
    bool serveUntil(const std::function<bool()>& condition)
    {
        m_loop.runPosted();
        return condition();
    }
    void serveForATurn() { m_loop.runPosted(); }
    void end() { m_administrator.reset(); }

private:
    FakeClock m_clock;
    FakeMainLoop m_loop { m_clock };
    std::optional<FakeAdministrator> m_administrator;
};

class FakeWorkspaceBench {
public:
    FakeWorkspaceBench() { m_workspace.emplace(m_loop); }

    Workspace& workspace() { return *m_workspace; }
    void launch(const RunningApplication& application) { m_workspace->launch(application); }
    void quit(const RunningApplication& application) { m_workspace->quit(application); }
    bool serveUntil(const std::function<bool()>& condition)
    {
        m_loop.runPosted();
        return condition();
    }
    void serveForATurn() { m_loop.runPosted(); }
    void end() { m_workspace.reset(); }

private:
    FakeClock m_clock;
    FakeMainLoop m_loop { m_clock };
    std::optional<FakeWorkspace> m_workspace;
};

class FakeUserDefaultsBench {
public:
    UserDefaults& defaults() { return m_defaults; }
    void startAnew() { } // The fake is the store itself.

private:
    FakeUserDefaults m_defaults;
};

class FakeFileStoreBench {
public:
    FileStore& store() { return m_store; }
    static std::filesystem::path path() { return "/folder/file"; }
    std::filesystem::path impossiblePath()
    {
        m_store.failure = FileStoreError { "could not create: No such file or directory" };
        return "/missing/child";
    }
    [[nodiscard]] std::optional<std::string> contents() const { return m_store.contents(path()); }
    [[nodiscard]] std::optional<FilePermissions> permissions() const { return m_store.permissions(path()); }
    void replaceFromOutside(std::string_view contents) { m_store.replaceFromOutside(path(), contents); }
    void removeFromOutside() { m_store.removeFromOutside(path()); }

private:
    FakeFileStore m_store;
};

}

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, AdministratorContract, FakeAdministratorBench);
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, FilterSystemContract, FakeFilterSystemBench);
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, MainLoopContract, FakeMainLoopBench);
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, UserDefaultsContract, FakeUserDefaultsBench);
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, FileStoreContract, FakeFileStoreBench);
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, WorkspaceContract, FakeWorkspaceBench);

}
