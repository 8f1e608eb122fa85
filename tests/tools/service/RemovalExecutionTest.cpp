#include "service/RemovalExecution.h"
#include "ServiceTesting.h"
#include "service/FileDescriptor.h"

#include <array>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <vector>

namespace brevanta::service {

namespace fs = std::filesystem;

static void write(const fs::path& path, const std::string& text)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

static std::string read(const fs::path& path)
{
    std::ifstream file(path);
    return { std::istreambuf_iterator<char>(file), {} };
}

static FileDescriptor lock(const fs::path& path)
{
    FileDescriptor descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    EXPECT_EQ(::flock(descriptor.get(), LOCK_EX | LOCK_NB), 0);
    return descriptor;
}

// An installation below a root, and runs of the service on it whose time is the test's.
class RemovalExecutionTest : public testing::Test {
protected:
    void SetUp() override
    {
        install();
        launch();
    }

    void install() const
    {
        write(propertyList, "plist");
        write(program, "program");
        write(support / "folder/cache.db", "cache");
        write(support.parent_path() / "Other/kept", "kept");
        write(launchd, R"({"backgroundItem":"allowed","loaded":true,"refusals":2})");
    }

    void launch(RemovalTimes times = { .pending = 60, .committed = 10, .finishing = 30 })
    {
        execution.reset();
        service = std::make_unique<Service>(testIdentity(++launchOrder));
        execution = std::make_unique<RemovalExecution>(*service, RemovalOnDisk::open(root.string()).value(), times);
    }

    [[nodiscard]] bool advance(double now) const
    {
        service->advance(now);
        return execution->advance().has_value();
    }

    std::string queue() const
    {
        return replyTo(*service, R"({"type":"queue_removal","origin":"in_app","account":"42"})")["removal"]["state"];
    }

    [[nodiscard]] nlohmann::json record() const { return service->state().removal().record(); }

    void expectInstalled() const
    {
        EXPECT_EQ(read(support / "folder/cache.db"), "cache");
        EXPECT_TRUE(fs::exists(propertyList) && fs::exists(program));
        EXPECT_FALSE(fs::exists(marker));
        EXPECT_FALSE(service->isQuitting());
    }

    void expectGone() const
    {
        for (const auto& path : { propertyList, program, support, marker })
            EXPECT_FALSE(fs::exists(fs::symlink_status(path))) << path;
        EXPECT_EQ(nlohmann::json::parse(read(launchd)),
            nlohmann::json::parse(R"({"backgroundItem":"allowed","loaded":false,"refusals":2})"));
        EXPECT_EQ(read(support.parent_path() / "Other/kept"), "kept");
        EXPECT_TRUE(lock(removalLock).isOpen());
    }

    TemporaryDirectory directory;
    fs::path root = directory.file("a root");
    fs::path propertyList = root / "Library/LaunchDaemons/com.brevanta.daemon.plist";
    fs::path program = root / "Library/PrivilegedHelperTools/com.brevanta.daemon";
    fs::path support = root / "Library/Application Support/Kestrelune";
    fs::path request = support / "removal-requested";
    fs::path marker = root / "Library/Application Support/Kestrelune.removing";
    fs::path removalLock = root / "Library/Application Support/Kestrelune.removal.lock";
    fs::path launchd = root / "var/db/launchd.json";
    std::uint64_t launchOrder = 0;
    std::unique_ptr<Service> service;
    std::unique_ptr<RemovalExecution> execution;
};

TEST_F(RemovalExecutionTest, ARemovalLeftAloneTakesTheInstallationAwayAtItsTimeAndEndsTheService)
{
    EXPECT_EQ(execution->nextAt(), std::nullopt);
    EXPECT_EQ(queue(), "pending");
    for (const double at : { 60.0, 70.0, 100.0 }) {
        EXPECT_DOUBLE_EQ(execution->nextAt().value(), at);
        ASSERT_TRUE(advance(at - 0.5));
        expectInstalled();
        ASSERT_TRUE(advance(at));
    }
    EXPECT_TRUE(service->isQuitting());
    expectGone();
    struct stat status {};
    ASSERT_EQ(::stat(removalLock.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(RemovalExecutionTest, TheRequestIsOnDiskByTheTimeOfTheAnswerAndAsLongAsTheRemovalIs)
{
    queue();
    EXPECT_TRUE(fs::exists(request));
    for (const auto* command : { "removal committed", "removal finishing" }) {
        runCommand(*service, command);
        EXPECT_TRUE(fs::exists(request)) << command;
    }
    runCommand(*service, "removal none");
    EXPECT_FALSE(fs::exists(request));
    queue();
    replyTo(*service, R"({"type":"cancel_removal","account":"42","action_id":)" + record()["action_id"].dump() + "}");
    EXPECT_FALSE(fs::exists(request));
    runCommand(*service, "removal pending 5");
    EXPECT_TRUE(fs::exists(request));
    ASSERT_TRUE(advance(5));
    EXPECT_EQ(record()["state"], "none");
    EXPECT_FALSE(fs::exists(request));
    expectInstalled();
}

TEST_F(RemovalExecutionTest, AServiceThatIsTornDownInTheMiddleGoesOnWithThePendingRequestOfTheSameAccount)
{
    queue();
    runCommand(*service, "removal finishing");
    service->quit();
    ASSERT_TRUE(advance(1000));
    ASSERT_TRUE(fs::exists(program));
    launch();
    EXPECT_EQ(record()["state"], "pending");
    EXPECT_EQ(record()["account"], "42");
    EXPECT_EQ(record()["launch_order"], 2);
    ASSERT_TRUE(advance(0));
    expectInstalled();
    // Whatever wrote the request.
    for (const std::string text : { "", "[]", R"({"account":"4x"})" }) {
        write(request, text);
        launch();
        EXPECT_EQ(record()["state"], "pending") << text;
        EXPECT_FALSE(record().contains("account")) << text;
    }
}

TEST_F(RemovalExecutionTest, NothingGoesWhileSomebodyHoldsALock)
{
    runCommand(*service, "removal finishing");
    double now = 30;
    for (const auto& path : { removalLock, fs::path(launchd.string() + ".lock") }) {
        {
            const auto held = lock(path);
            ASSERT_TRUE(advance(now));
            expectInstalled();
            EXPECT_GT(execution->nextAt().value(), now);
        }
        // Meanwhile it holds none itself.
        EXPECT_TRUE(lock(removalLock).isOpen());
        now = execution->nextAt().value();
    }
    ASSERT_TRUE(advance(now));
    expectGone();
}

TEST_F(RemovalExecutionTest, ARemovalThatHangsTakesNothingAwayUntilItIsMovedOn)
{
    runCommand(*service, "removal hanging 40");
    EXPECT_EQ(record()["finishing_by"], service->state().epoch() - 40);
    ASSERT_TRUE(advance(1000));
    EXPECT_EQ(execution->nextAt(), std::nullopt) << "it would be asked without end";
    EXPECT_EQ(record()["state"], "finishing");
    expectInstalled();
    runCommand(*service, "removal finishing");
    ASSERT_TRUE(advance(1030));
    expectGone();
}

TEST_F(RemovalExecutionTest, ARemovalThatWasKilledAnywhereIsBroughtToItsEndByTheNextRun)
{
    for (std::size_t steps = 0; steps <= 4; ++steps) {
        SCOPED_TRACE(steps);
        install();
        fs::create_symlink("nowhere", marker);
        if (steps > 0)
            fs::remove_all(support);
        if (steps > 1)
            write(launchd, R"({"backgroundItem":"allowed","loaded":false,"refusals":2})");
        if (steps > 2)
            fs::remove(propertyList);
        if (steps > 3)
            fs::remove(program);
        launch();
        EXPECT_EQ(record()["state"], "finishing");
        EXPECT_EQ(record()["blocking_off"], true);
        ASSERT_TRUE(advance(30));
        EXPECT_TRUE(service->isQuitting());
        expectGone();
    }
}

TEST_F(RemovalExecutionTest, WhatLaunchdHoldsMayBeMissingButNotUnusable)
{
    for (const std::string text : { "", "[]", "{" }) {
        write(launchd, text);
        launch({ .pending = 0, .committed = 0, .finishing = 0 });
        queue();
        EXPECT_FALSE(advance(0)) << text;
        expectInstalled();
        EXPECT_EQ(read(launchd), text);
    }
    fs::remove(launchd);
    ASSERT_TRUE(advance(0));
    EXPECT_TRUE(service->isQuitting());
    EXPECT_FALSE(fs::exists(program));
    EXPECT_FALSE(fs::exists(launchd));
}

TEST_F(RemovalExecutionTest, ARequestThatCannotBeNotedEndsTheService)
{
    fs::remove_all(support);
    write(support, "no folder");
    queue();
    EXPECT_FALSE(advance(0));
}

TEST_F(RemovalExecutionTest, OnlyADirectoryOtherThanTheMachinesOwnRootIsTaken)
{
    for (const std::string path : { "/", "//", "/tmp/..", "" })
        EXPECT_FALSE(RemovalOnDisk::open(path)) << path;
    EXPECT_FALSE(RemovalOnDisk::open(program.string()));
    EXPECT_FALSE(RemovalOnDisk::open(directory.file("missing")));
}

TEST_F(RemovalExecutionTest, TheProcessEndsWithSuccessAndWithoutItsSockets)
{
    std::array<int, 2> commands {};
    ASSERT_EQ(::pipe(commands.data()), 0);
    const FileDescriptor readEnd(commands[0]);
    const FileDescriptor writeEnd(commands[1]);
    constexpr std::string_view line = "removal pending\n";
    ASSERT_EQ(::write(writeEnd.get(), line.data(), line.size()), static_cast<ssize_t>(line.size()));
    std::vector<std::string> arguments { BREVANTA_BUILT_SERVICE, "--socket", directory.file("socket"), "--control",
        directory.file("control"), "--stdin", "--root", root.string(), "--removal-seconds", "0", "0.001", "0" };
    std::vector<char*> pointers;
    for (auto& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions {};
    ASSERT_EQ(::posix_spawn_file_actions_init(&actions), 0);
    ::posix_spawn_file_actions_adddup2(&actions, readEnd.get(), STDIN_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    std::array<char*, 1> environment {};
    pid_t process = -1;
    const auto started
        = ::posix_spawn(&process, BREVANTA_BUILT_SERVICE, &actions, nullptr, pointers.data(), environment.data());
    ::posix_spawn_file_actions_destroy(&actions);
    ASSERT_EQ(started, 0);
    int status = -1;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_FALSE(fs::exists(directory.file("socket")) || fs::exists(directory.file("control")));
    expectGone();
}

}
