#include "gtk/standin/StandInPrograms.h"
#include "functional/support/TemporaryDirectory.h"
#include "gtk/standin/LaunchProperties.h"
#include "gtk/standin/ServiceProcessControl.h"
#include "gtk/standin/StandInStore.h"
#include "posix/FileDescriptor.h"

#include <fcntl.h>
#include <fstream>
#include <glib.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace brevanta {

namespace {

namespace fs = std::filesystem;

const fs::path programs = fs::path(BREVANTA_BUILT_BUNDLE) / "Contents/StandIns";
const fs::path resources = fs::path(BREVANTA_BUILT_BUNDLE) / "Contents/Resources";

struct Ended {
    int status { -1 };
    std::string output;
    std::string errors;
};

// A new named pipe, of which a process keeps the other end open for as long as it runs.
class Lifeline {
public:
    explicit Lifeline(const fs::path& path)
        : m_made((fs::remove(path), ::mkfifo(path.c_str(), 0600) == 0))
        , m_end(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))
    {
    }

    // True once the process has written a byte, which is taken.
    bool awaitByte() { return await(POLLIN) && ::read(m_end.get(), &m_byte, 1) == 1; }
    // True once the process has ended.
    bool awaitEnd() { return await(POLLHUP); }

private:
    bool await(short event)
    {
        constexpr int patience = 30000;
        pollfd waited { .fd = m_end.get(), .events = event, .revents = 0 };
        return m_made && ::poll(&waited, 1, patience) == 1 && (waited.revents & event);
    }

    bool m_made;
    FileDescriptor m_end;
    char m_byte {};
};

class StandInProgramsTest : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(prepareStandInPrograms(root, programs));
        fs::create_directories(root / "Library/PrivilegedHelperTools");
    }
    void TearDown() override { run("launchctl bootout system/com.brevanta.daemon"); }

    Ended run(const std::string& script) const
    {
        const auto path = standInSearchPath(root);
        gchar** environment = g_environ_setenv(g_get_environ(), "PATH", path.c_str(), TRUE);
        environment = g_environ_setenv(environment, "STANDIN_ROOT", root.c_str(), TRUE);
        std::string text = "cd '" + root.string() + "'; " + script;
        char shell[] = "/bin/sh";
        char option[] = "-c";
        char* arguments[] = { shell, option, text.data(), nullptr };
        gchar* output = nullptr;
        gchar* errors = nullptr;
        int waitStatus = -1;
        const bool started = g_spawn_sync(
            "/", arguments, environment, G_SPAWN_DEFAULT, nullptr, nullptr, &output, &errors, &waitStatus, nullptr);
        EXPECT_TRUE(started);
        Ended ended { .status = WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : -1,
            .output = started ? output : "",
            .errors = started ? errors : "" };
        g_free(output);
        g_free(errors);
        g_strfreev(environment);
        return ended;
    }

    // Installs a shell script as the service, with a property list that gives it the lifeline's path.
    void installService(const std::string& script) const
    {
        const auto program = root / "Library/PrivilegedHelperTools/com.brevanta.daemon";
        std::ofstream(program) << "#!/bin/sh\n" << script;
        fs::permissions(program, fs::perms::owner_all);
        std::ofstream(root / "service.plist")
            << R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict><key>KeepAlive</key><true/>)"
               "<key>Label</key><string>com.brevanta.daemon</string><key>ProgramArguments</key><array>"
               "<string>/Library/PrivilegedHelperTools/com.brevanta.daemon</string><string>/lifeline</string>"
               "</array></dict></plist>";
    }

    // Nothing unless a process is known.
    [[nodiscard]] std::optional<ServiceProcess> process() const { return StandInStore(root).service()->process; }

    functional::TemporaryDirectory directory;
    fs::path root { fs::canonical(directory.path()) };
    const std::string bootstrap { "launchctl bootstrap system service.plist" };
    const std::string bootOut { "launchctl bootout system/com.brevanta.daemon" };
    const std::string print { "launchctl print system/com.brevanta.daemon" };
    const std::string standStill { "exec 3>\"$1\"\necho >&3\nexec sleep 600\n" };
};

}

TEST_F(StandInProgramsTest, LaunchctlLoadsAndUnloadsTheServiceWithItsProcess)
{
    installService("ls /proc/self/fd\ncut -d ' ' -f 6 /proc/self/stat\necho $$-$HOME\n" + standStill);
    EXPECT_EQ(run(print).status, 113);
    const auto absent = run(bootOut);
    EXPECT_EQ(absent.status, 3);
    EXPECT_EQ(absent.errors, "Boot-out failed: 3: No such process\n");

    Lifeline lifeline(root / "lifeline");
    EXPECT_EQ(run("lockf -s -k lock sh -c '" + bootstrap + "'").status, 0);
    ASSERT_TRUE(lifeline.awaitByte());
    EXPECT_EQ(run("lockf -s -k -t 0 lock true").status, 0) << "the service holds nothing of whoever loaded it";
    const auto printed = run(print);
    EXPECT_EQ(printed.status, 0);
    ASSERT_TRUE(process());
    const auto number = std::to_string(process()->processId);
    EXPECT_TRUE(printed.output.contains("pid = " + number)) << printed.output;
    EXPECT_EQ(run("cat var/log/com.brevanta.daemon.log").output, "0\n1\n2\n3\n" + number + "\n" + number + "-\n")
        << "the descriptors with the one of ls itself, the session, and an environment of its own";
    const auto again = run(bootstrap);
    EXPECT_EQ(again.status, 5);
    EXPECT_EQ(again.errors, "Bootstrap failed: 5: Input/output error\n");
    EXPECT_EQ(run("launchctl print system/com.kestrelune.daemon").status, 113);
    EXPECT_EQ(run("launchctl bootout system/com.kestrelune.daemon").status, 3);

    EXPECT_EQ(run(bootOut).status, 0);
    EXPECT_TRUE(lifeline.awaitEnd());
    EXPECT_EQ(run(print).status, 113);
    EXPECT_EQ(StandInStore(root).service(), ServiceStandIn());
}

TEST_F(StandInProgramsTest, LaunchctlRefusesAsOftenAsItWasToldAndWhatIsNoDaemon)
{
    installService(standStill);
    EXPECT_TRUE(StandInStore(root).changeService(
        [](const auto&) { return ServiceStandIn { .isLoaded = false, .refusals = 2 }; }));
    EXPECT_EQ(run(bootstrap).status, 5);
    EXPECT_EQ(run(bootstrap).status, 5);
    EXPECT_EQ(StandInStore(root).service(), ServiceStandIn());

    std::ofstream(root / "other.plist") << "<plist><dict><key>Label</key><string>a</string></dict></plist>";
    EXPECT_EQ(run("launchctl bootstrap system missing.plist").status, ENOENT);
    EXPECT_EQ(run("launchctl bootstrap system other.plist").status, EINVAL);
    EXPECT_EQ(run("launchctl bootstrap gui service.plist").status, 64);
    EXPECT_EQ(run("launchctl bootout com.brevanta.daemon").status, 64);
    EXPECT_EQ(run("chmod 644 Library/PrivilegedHelperTools/*; " + bootstrap).status, EACCES);
    EXPECT_EQ(run(print).status, 113) << "nothing of that has loaded it";
    std::ofstream(root / "var/db/launchd.json") << "[]";
    for (const auto& command : { bootstrap, bootOut, print })
        EXPECT_EQ(run(command).status, 1) << command;
    fs::remove(root / "var/db/launchd.json");
}

TEST_F(StandInProgramsTest, AServiceThatWasKilledStaysLoadedUntilItIsBootedOut)
{
    installService(standStill);
    Lifeline lifeline(root / "lifeline");
    ASSERT_EQ(run(bootstrap).status, 0);
    ASSERT_TRUE(lifeline.awaitByte());
    ASSERT_TRUE(process());
    // Waits for the process itself: its end of the pipe is closed some time before it counts as ended.
    endServiceProcess(*process(), std::chrono::seconds(30));
    const auto printed = run(print);
    EXPECT_EQ(printed.status, 0);
    EXPECT_TRUE(printed.output.contains("not running")) << printed.output;
    EXPECT_EQ(run(bootstrap).status, 5);
    EXPECT_EQ(run(bootOut).status, 0);
    Lifeline next(root / "lifeline");
    EXPECT_EQ(run(bootstrap).status, 0);
    EXPECT_TRUE(next.awaitByte());
}

TEST_F(StandInProgramsTest, AProcessThatDoesNotHeedTheRequestIsKilledAndAStrangerIsNot)
{
    installService("trap '' TERM\n" + standStill);
    Lifeline lifeline(root / "lifeline");
    ASSERT_EQ(run(bootstrap).status, 0);
    ASSERT_TRUE(lifeline.awaitByte());
    ASSERT_TRUE(process());
    auto predecessor = *process();
    --predecessor.startTicks;
    EXPECT_FALSE(isRunning(predecessor));
    endServiceProcess(predecessor, std::chrono::milliseconds(0));
    EXPECT_TRUE(isRunning(*process()));
    endServiceProcess(*process(), std::chrono::milliseconds(50));
    EXPECT_TRUE(lifeline.awaitEnd());
}

TEST_F(StandInProgramsTest, TheSystemsCommandsEndWhatLaunchctlHasStarted)
{
    for (const std::string command : { "unloaded", "turned-off", "fresh" }) {
        installService(standStill);
        Lifeline lifeline(root / "lifeline");
        ASSERT_EQ(run(bootstrap).status, 0) << command;
        ASSERT_TRUE(lifeline.awaitByte());
        EXPECT_EQ(run(BREVANTA_SYSTEM_TOOL " --root . service " + command).status, 0);
        EXPECT_TRUE(lifeline.awaitEnd()) << command;
        EXPECT_EQ(run(print).status, 113) << command;
    }
}

TEST_F(StandInProgramsTest, TheBundledServiceRunsFromItsPropertyListAndTakesCommands)
{
    const auto properties = readLaunchProperties(resources / "com.brevanta.daemon.plist");
    ASSERT_TRUE(properties);
    EXPECT_EQ(properties->label, "com.brevanta.daemon");
    EXPECT_EQ(properties->programArguments.front(), "/Library/PrivilegedHelperTools/com.brevanta.daemon");
    fs::copy(resources / "com.brevanta.daemon", root / "Library/PrivilegedHelperTools");
    Lifeline log(root / "var/log/com.brevanta.daemon.log");
    ASSERT_EQ(run("launchctl bootstrap system '" + (resources / "com.brevanta.daemon.plist").string() + "'").status, 0);
    ASSERT_TRUE(log.awaitByte()) << "it says that it listens";
    EXPECT_TRUE(fs::is_socket(root / "var/run/com.brevanta.daemon.sock"));
    EXPECT_TRUE(fs::is_socket(root / "var/run/com.brevanta.daemon.control.sock"));
    EXPECT_EQ(run(bootOut).status, 0);
    EXPECT_TRUE(log.awaitEnd());
}

TEST_F(StandInProgramsTest, LockfHoldsTheLockForItsCommandAndSaysHowThatEnded)
{
    const auto lock = (root / "lock").string();
    struct Case {
        const char* script;
        int status;
        const char* errors;
        bool isKept;
    };
    const Case cases[] = {
        { "lockf -s -k -t 120 lock /bin/sh -c 'exit 7'", 7, "", true },
        { "lockf lock true", 0, "", false },
        { "lockf -k lock lockf -t 0 lock true", 75, "lockf: lock: already locked\n", true },
        { "lockf -k lock lockf -s -t 0 lock true", 75, "", true },
        { "lockf -k lock lockf -s -t 1 lock true", 75, "", true },
        { "lockf -k lock sh -c 'exit 75'", 75, "", true },
        { "lockf -n lock true", 69, "lockf: lock: No such file or directory\n", false },
        { "lockf -s var/none/lock true", 73, "", false },
        { "lockf -t soon lock true 2>/dev/null", 64, "", false },
        { "lockf lock 2>/dev/null", 64, "", false },
    };
    for (const auto& [script, status, errors, isKept] : cases) {
        fs::remove(lock);
        const auto ended = run(script);
        EXPECT_EQ(ended.status, status) << script;
        EXPECT_EQ(ended.errors, errors) << script;
        EXPECT_EQ(fs::exists(lock), isKept) << script;
    }
    EXPECT_EQ(run("mkfifo held go; lockf -k lock sh -c 'echo >held; read line <go; echo first' & read line <held;"
                  " lockf -k lock echo second & echo >go; wait")
                  .output,
        "first\nsecond\n");
}

TEST_F(StandInProgramsTest, ChownAndXattrAnswerAsOnAMacWithoutTheAttribute)
{
    struct Case {
        const char* script;
        int status;
        const char* errors;
    };
    const Case cases[] = {
        { "chown root:wheel service.plist var", 0, "" },
        { "chown root:wheel none", 1, "chown: none: No such file or directory\n" },
        { "chown somebody service.plist 2>/dev/null", 64, "" },
        { "xattr -d com.apple.quarantine service.plist", 1,
            "xattr: service.plist: No such xattr: com.apple.quarantine\n" },
        { "xattr -d com.apple.quarantine none", 1, "xattr: No such file: none\n" },
    };
    installService("");
    for (const auto& [script, status, errors] : cases) {
        const auto ended = run(script);
        EXPECT_EQ(ended.status, status) << script;
        EXPECT_EQ(ended.errors, errors) << script;
    }
}

TEST_F(StandInProgramsTest, OnlyTheRootIsPrepared)
{
    for (const auto* const name : { "launchctl", "lockf", "xattr", "chown" })
        EXPECT_EQ(run(std::string("readlink $(command -v ") + name + ")").output, (programs / name).string() + "\n");
    std::ofstream(root / "old") << "an earlier one";
    fs::rename(root / "old", root / "bin/launchctl");
    EXPECT_TRUE(prepareStandInPrograms(root, programs));
    EXPECT_EQ(fs::read_symlink(root / "bin/launchctl"), programs / "launchctl");
    EXPECT_FALSE(prepareStandInPrograms(root, root / "none")) << "no programs";

    const functional::TemporaryDirectory outside;
    fs::remove_all(root / "usr");
    fs::create_directory_symlink(outside.path(), root / "usr");
    EXPECT_FALSE(prepareStandInPrograms(root, programs));
    EXPECT_FALSE(fs::exists(outside.path() / "bin/lockf"));
    fs::remove(root / "usr");
}

}
