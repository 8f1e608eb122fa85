#include "functional/support/TemporaryDirectory.h"
#include "install/InstallFailure.h"
#include "install/InstallScript.h"
#include "install/RemovalScript.h"
#include "platform/Administrator.h"
#include "support/FileContents.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <sys/wait.h>
#include <vector>

namespace brevanta {

namespace {

void write(const std::filesystem::path& path, const std::string& contents, int permissions = 0644)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << contents;
    std::filesystem::permissions(path, std::filesystem::perms(permissions));
}

int permissionsOf(const std::filesystem::path& path)
{
    return static_cast<int>(std::filesystem::symlink_status(path).permissions());
}

// Runs the command to its end; its exit status, or -1 if it had none.
int statusOf(const std::string& command)
{
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

constexpr const char* strange = "it's \"$HOME\" `id` $(id) \\n\n é *;& %s";

// The commands that the script needs of a Mac. Each writes down how it was called.
constexpr const char* tell = "#!/bin/sh\n{ printf '%s' \"${0##*/}\"; printf ' %s' \"$@\"; echo; } >> \"$CALLS\"\n";
constexpr const char* launchctl = R"(count=$(grep -c "^launchctl $1" "$CALLS")
case $1 in
bootout) eval "$AT_BOOTOUT"; exit 3 ;;
print) [ "$count" -le "${STAYS:-0}" ] ;;
bootstrap) [ "$count" -gt "${REFUSALS:-0}" ] || { echo "failed: $REFUSAL" >&2; exit "$REFUSAL"; } ;;
esac
)";
constexpr const char* lockf = "eval \"$WHILE_WAITING\"; shift 5; exec \"$@\"\n";

class InstallScriptRunTest : public testing::Test {
protected:
    void SetUp() override
    {
        write(m_root / "bin/launchctl", std::string(tell) + launchctl, 0755);
        write(m_root / "bin/xattr", std::string(tell) + "exit 1\n", 0755);
        write(m_root / "bin/chown", std::string(tell) + "exit ${CHOWN:-0}\n", 0755);
        write(m_root / "bin/sleep", tell, 0755);
        write(m_root / "usr/bin/lockf", std::string(tell) + lockf, 0755);
        write(m_paths.bundledProgram, std::string(200'000, 'n'), 0600);
        write(m_paths.bundledPropertyList, "new list", 0600);
        write(m_paths.program(), "old", 0700);
        write(m_paths.propertyList(), "old list", 0600);
        std::filesystem::create_directories(m_paths.removalLock().parent_path());
    }

    // The variables are words of a shell.
    int run(const std::string& script, const std::string& variables = "")
    {
        return statusOf("env -i CALLS=" + m_calls.string() + " MARKER=" + shellQuoted(m_paths.removalMarker().string())
            + " PATH=" + shellQuoted((m_root / "bin").string()) + ":/usr/bin:/bin " + variables + " /bin/sh -c "
            + shellQuoted(script) + " 2>" + m_errors.string());
    }

    [[nodiscard]] std::string errors() const { return contentsOf(m_errors); }
    [[nodiscard]] std::string calls() const { return contentsOf(m_calls); }

    [[nodiscard]] int count(const std::string& call) const
    {
        const auto all = "\n" + calls();
        int found = 0;
        for (auto at = all.find("\n" + call); at != std::string::npos; at = all.find("\n" + call, at + 1))
            ++found;
        return found;
    }

    // What is in the folders of the service, with the contents of the files.
    using Library = std::map<std::string, std::string>;
    [[nodiscard]] Library library() const
    {
        Library entries;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_root / "Library")) {
            if (!entry.is_directory())
                entries[entry.path().lexically_relative(m_root / "Library").string()] = contentsOf(entry.path());
        }
        return entries;
    }

    functional::TemporaryDirectory m_folder;
    std::filesystem::path m_calls { m_folder.path() / "calls" };
    std::filesystem::path m_errors { m_folder.path() / "errors" };
    std::filesystem::path m_root { m_folder.path() / (std::string("root ") + strange) };
    InstallPaths m_paths {
        .bundledProgram = m_folder.path() / (std::string("bundle ") + strange) / "daemon",
        .bundledPropertyList = m_folder.path() / (std::string("bundle ") + strange) / "daemon.plist",
        .root = m_root,
    };
    const std::string m_program { "PrivilegedHelperTools/com.brevanta.daemon" };
    const std::string m_list { "LaunchDaemons/com.brevanta.daemon.plist" };
    const std::string m_lock { "Application Support/Kestrelune.removal.lock" };
    const RemovalHandover m_handover { .account = "123", .actionId = 7, .launch = std::string(strange) + '\0' };
    const Library m_before { { m_program, "old" }, { m_list, "old list" }, { m_lock, "" } };
};

}

TEST_F(InstallScriptRunTest, ReplacesTheServiceAndCleansOutTheEarlierOnes)
{
    const std::vector<std::string> earlier { "com.kestrelune.daemon", "com.kestrelune.daemon.dev",
        "com.kestrelune.helper", "com.brevanta.helper" };
    for (const auto& label : earlier) {
        write(m_paths.program().parent_path() / label, "earlier");
        write(m_paths.propertyList().parent_path() / (label + ".plist"), "earlier");
    }
    write(m_paths.program().parent_path() / "com.kestrelune.daemon.other", "kept");
    write(m_paths.removalLock(), "", 0644);

    EXPECT_EQ(run(installScript(m_paths), "STAYS=2"), 0) << errors();

    EXPECT_EQ(library(),
        (Library {
            { m_program, std::string(200'000, 'n') },
            { m_list, "new list" },
            { m_lock, "" },
            { "PrivilegedHelperTools/com.kestrelune.daemon.other", "kept" },
        }));
    EXPECT_EQ(permissionsOf(m_paths.program()), 0755);
    EXPECT_EQ(permissionsOf(m_paths.propertyList()), 0644);
    EXPECT_EQ(permissionsOf(m_paths.removalLock()), 0600);
    EXPECT_TRUE(std::filesystem::is_directory(m_paths.supportFolder()));

    std::string expected = "lockf -s -k -t 120 " + m_paths.removalLock().string() + " /bin/sh -c ";
    EXPECT_TRUE(calls().starts_with(expected)) << calls();
    expected = "\n";
    for (const auto& label : earlier)
        expected += "launchctl bootout system/" + label + "\n";
    for (const auto& placed : { m_paths.program(), m_paths.propertyList() }) {
        expected += "xattr -d com.apple.quarantine " + placed.string() + ".installing\n";
        expected += "chown root:wheel " + placed.string() + ".installing\n";
    }
    expected += "launchctl bootout system/com.brevanta.daemon\n";
    for (int round = 0; round < 2; ++round)
        expected += "launchctl print system/com.brevanta.daemon\nsleep 0.1\n";
    expected += "launchctl print system/com.brevanta.daemon\n";
    expected += "launchctl bootstrap system " + m_paths.propertyList().string() + "\n";
    EXPECT_TRUE(calls().ends_with(expected)) << calls();
}

TEST_F(InstallScriptRunTest, ReplacesEvenAFolderThatHasTheNameOfTheProgramOrOfItsCopy)
{
    std::filesystem::remove(m_paths.program());
    write(m_paths.program() / "inside", "");
    write(std::filesystem::path(m_paths.program().string() + ".installing") / "inside", "");
    EXPECT_EQ(run(installScript(m_paths)), 0) << errors();
    EXPECT_EQ(library()[m_program].size(), 200'000U);
    EXPECT_EQ(library().size(), 3U);
}

TEST_F(InstallScriptRunTest, StartsTheServiceInUpToTwentyAttemptsWhileTheOldOneIsRegistered)
{
    const std::string refused
        = "launchd did not accept the blocking service after 20 attempts over about 5 seconds (Input/output error, the "
          "previous service is still registered). Choose Restart Blocking Service from the menu to try again.";
    struct Case {
        std::string refusals;
        int expectedStatus;
        int attempts;
        std::string message;
    };
    for (const auto& [refusals, expectedStatus, attempts, message] : std::initializer_list<Case> {
             { "REFUSALS=3 REFUSAL=5", 0, 4, "" },
             { "REFUSALS=0", 0, 1, "" },
             { "REFUSALS=20 REFUSAL=5", 5, 20, refused },
             { "REFUSALS=1 REFUSAL=99", 99, 1, "failed: 99" },
         }) {
        std::filesystem::remove(m_calls);
        EXPECT_EQ(run(installScript(m_paths), "STAYS=1000 " + refusals), expectedStatus);
        EXPECT_EQ(count("launchctl bootstrap "), attempts);
        EXPECT_EQ(count("sleep 0.25"), attempts - 1);
        EXPECT_EQ(count("launchctl print "), 100); // Then it goes on regardless.
        const auto told = installFailure({ .message = errors() }, FlightTask::install).message;
        EXPECT_TRUE(told.ends_with(": " + message) || message.empty()) << told;
    }
}

TEST_F(InstallScriptRunTest, AFileThatCannotBePlacedLeavesTheOldOneWholeAndTheServiceAlone)
{
    const auto tooLarge = [](const std::string& script) { return "trap '' XFSZ; ulimit -f 100; " + script; };
    const auto script = installScript(m_paths);

    EXPECT_EQ(run(tooLarge(script)), 1);
    EXPECT_EQ(library(), m_before) << "A copy that failed half-way";
    EXPECT_EQ(run(script, "CHOWN=9"), 9);
    EXPECT_EQ(library(), m_before) << "A copy without an owner";
    std::filesystem::remove(m_paths.bundledProgram);
    EXPECT_EQ(run(script), 1);
    EXPECT_EQ(library(), m_before) << "A program that is missing";

    write(m_paths.bundledProgram, "new", 0755);
    std::filesystem::remove(m_paths.bundledPropertyList);
    EXPECT_EQ(run(script), 1);
    EXPECT_EQ(library()[m_list], "old list");
    EXPECT_EQ(library().size(), 3U);
    write(m_paths.bundledPropertyList, "new list");
    write(m_paths.supportFolder(), "a file in its place");
    EXPECT_NE(run(script), 0);

    EXPECT_EQ(count("lockf "), 5);
    EXPECT_EQ(count("launchctl bootout system/com.brevanta.daemon\n"), 0);
    EXPECT_EQ(count("launchctl bootstrap "), 0);
}

TEST_F(InstallScriptRunTest, NothingIsDoneDuringARemoval)
{
    const std::string began
        = "Brevanta began removing its blocking service from this Mac while the password window was "
          "open, so nothing was reinstalled.\n";
    const std::string still = "Brevanta is still removing its blocking service from this Mac. Try again in a minute.\n";
    struct Case {
        std::string whileWaiting;
        int status;
        std::string message;
    };
    for (const auto& [whileWaiting, status, message] : std::initializer_list<Case> {
             { "echo > \"$MARKER\"", 79, began },
             { "ln -s nowhere \"$MARKER\"", 79, began },
             { "exit 75", 75, still },
         }) {
        EXPECT_EQ(run(installScript(m_paths), "WHILE_WAITING=" + shellQuoted(whileWaiting)), status) << whileWaiting;
        EXPECT_EQ(errors(), message);
        std::filesystem::remove(m_paths.removalMarker());
        EXPECT_EQ(library(), m_before);
    }
    for (const auto* call : { "launchctl ", "chown ", "xattr ", "sleep " })
        EXPECT_EQ(count(call), 0) << call;
}

TEST_F(InstallScriptRunTest, ARemovalIsHandedOverAndTakesAwayWhatAnInstallPlacesAndNothingElse)
{
    const auto seen = m_folder.path() / "seen";
    write(m_paths.supportFolder() / "of the service", "");
    write(m_root / "Library/Application Support/Brevanta/native-host", "kept");
    const auto look = "cp -R " + shellQuoted((m_root / "Library/Application Support").string()) + " " + seen.string();
    EXPECT_EQ(run(removalScript(m_paths, m_handover), "STAYS=2 AT_BOOTOUT=" + shellQuoted(look)), 0) << errors();

    EXPECT_EQ(library(), (Library { { m_lock, "" }, { "Application Support/Brevanta/native-host", "kept" } }));
    EXPECT_FALSE(std::filesystem::exists(m_paths.supportFolder()));
    EXPECT_EQ(count("lockf -s -k -t 120 "), 1);
    EXPECT_EQ(count("launchctl print "), 3);
    EXPECT_EQ(count("launchctl bootstrap "), 0);

    EXPECT_TRUE(std::filesystem::exists(seen / "Kestrelune.removing")) << "an install must see it all the time";
    const nlohmann::json handover { { "account", "123" }, { "action_id", 7 }, { "launch", m_handover.launch } };
    for (const auto* name : { "removal-handover.json", "removal-requested" })
        EXPECT_EQ(nlohmann::json::parse(contentsOf(seen / "Kestrelune" / name)), handover) << name;
    const std::filesystem::directory_iterator left(seen / "Kestrelune");
    EXPECT_EQ(std::distance(begin(left), end(left)), 3) << "the temporary file stays behind";
}

TEST_F(InstallScriptRunTest, ARemovalThatCannotBeFinishedLeavesTheServiceWholeAndOnlyTheMarkerOfAnother)
{
    const std::string stays = "The blocking service did not stop in time. Try again in a minute.\n";
    const std::string still = "Brevanta is still removing its blocking service from this Mac. Try again in a minute.\n";
    const auto script = removalScript(m_paths, m_handover);
    EXPECT_EQ(run(script, "WHILE_WAITING='exit 75'"), 75);
    EXPECT_EQ(errors(), still);
    EXPECT_EQ(library(), m_before);
    write(m_paths.supportFolder(), "a file in its place");
    EXPECT_NE(run(script), 0);
    EXPECT_EQ(count("launchctl "), 0) << "nothing was handed over";
    std::filesystem::remove(m_paths.supportFolder());
    EXPECT_EQ(library(), m_before);

    for (const bool isAnothers : { false, true }) {
        if (isAnothers)
            write(m_paths.removalMarker(), "");
        EXPECT_EQ(run(script, "STAYS=1000"), 80);
        EXPECT_EQ(errors(), stays);
        EXPECT_EQ(std::filesystem::exists(m_paths.removalMarker()), isAnothers);
        EXPECT_EQ(library()[m_program], "old");
        EXPECT_EQ(library()[m_list], "old list");
    }
    EXPECT_EQ(run(script), 0) << "what another has begun is finished";
    EXPECT_EQ(library(), (Library { { m_lock, "" } }));
}

TEST(InstallScriptQuoting, TenThousandRandomTextsArriveAtTheShellAsTheyAre)
{
    const functional::TemporaryDirectory folder;
    std::mt19937 random(31);
    std::string script = "printf '%s\\0'";
    std::string expected;
    for (int path = 0; path < 10'000; ++path) {
        std::string text;
        for (auto length = random() % 40; length > 0; --length)
            text += random() % 4 ? static_cast<char>(1 + random() % 255) : "'\"\\\n$` "[random() % 7];
        script += " " + shellQuoted(text);
        expected += text + '\0';
    }
    // The script itself goes through AppleScript first; its literal has two escapes: \" and \\.
    const auto appleScript = administratorAppleScript(script, installPrompt);
    const std::string_view begin = "do shell script \"";
    ASSERT_TRUE(appleScript.starts_with(begin));
    std::string decoded;
    auto at = begin.size();
    for (; at < appleScript.size() && appleScript[at] != '"'; ++at) {
        if (appleScript[at] == '\\') {
            ++at;
            ASSERT_TRUE(appleScript.at(at) == '"' || appleScript.at(at) == '\\') << "at " << at;
        }
        decoded += appleScript[at];
    }
    EXPECT_EQ(
        appleScript.substr(at), "\" with prompt \"" + std::string(installPrompt) + "\" with administrator privileges");
    ASSERT_TRUE(decoded == script);

    write(folder.path() / "script", decoded);
    EXPECT_EQ(
        statusOf("/bin/sh " + (folder.path() / "script").string() + " >" + (folder.path() / "output").string()), 0);
    EXPECT_TRUE(contentsOf(folder.path() / "output") == expected);
}

}
