#include "functional/support/TemporaryDirectory.h"
#include "install/InstallScript.h"
#include "nativehost/NativeMessagingPolicy.h"
#include "posix/FileStorePosix.h"
#include "support/FileContents.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace brevanta {

namespace {

using namespace NativeMessagingPolicy;

// Shells that are /bin/sh somewhere; on a Mac it is bash in its POSIX mode.
std::vector<std::string> shells()
{
    std::vector<std::string> commands { "/bin/sh" };
    if (std::filesystem::exists("/bin/bash"))
        commands.emplace_back("/bin/bash --posix");
    return commands;
}

// The launcher in a folder whose name holds what means something to a shell, with a host that tells its arguments.
class NativeMessagingLauncherTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(m_launcher.markerFolder);
        putFile(m_launcher.host, "#!/bin/sh\nprintf '<%s>' \"$@\"\n");
    }

    void putFile(const std::filesystem::path& path, const std::string& contents)
    {
        ASSERT_TRUE(m_files.replace(path, contents, FilePermissions::executableByAll));
    }

    // What the launcher writes; how each of its commands was called is in `m_trace`.
    std::string run(const std::string& shell)
    {
        const auto script = m_root / "launcher";
        putFile(script, launcherText(m_launcher));
        const auto output = m_folder.path() / "output";
        const auto trace = m_folder.path() / "trace";
        const auto command = shell + " -x " + shellQuoted(script.string()) + " chrome-extension://abc/ 'a  \"b\"' >"
            + output.string() + " 2>" + trace.string();
        EXPECT_EQ(std::system(command.c_str()), 0) << contentsOf(trace);
        m_trace = contentsOf(trace);
        return contentsOf(output);
    }

    [[nodiscard]] bool sleptAtTheEnd() const { return m_trace.ends_with("+ exec /bin/sleep 0\n"); }

    // The reply as one message: its length in this machine's order of bytes, then its text.
    static std::string message()
    {
        const auto length = static_cast<std::uint32_t>(fallbackReply.size());
        std::string bytes(sizeof length, '\0');
        std::memcpy(bytes.data(), &length, sizeof length);
        return bytes + std::string(fallbackReply);
    }

    functional::TemporaryDirectory m_folder;
    std::filesystem::path m_root { m_folder.path() / "it's \"$HOME\" `id` $(id) \\n é *;& %s" };
    Launcher m_launcher { .serviceMarker = m_root / "daemons" / "service.plist",
        .host = m_root / "host",
        .markerFolder = m_root / "daemons",
        .mode = Mode::dev,
        .sleepSeconds = 0 };
    FileStorePosix m_files;
    std::string m_trace;
};

}

TEST_F(NativeMessagingLauncherTest, WithoutTheServiceItWritesOneMessageAndThenSleeps)
{
    for (const auto& shell : shells()) {
        EXPECT_TRUE(run(shell) == message()) << shell;
        EXPECT_TRUE(sleptAtTheEnd()) << m_trace;
    }
    // As a browser starts it: by its own path, for its first line and its permissions to tell how.
    const auto output = m_folder.path() / "started";
    EXPECT_EQ(std::system((shellQuoted((m_root / "launcher").string()) + " >" + output.string()).c_str()), 0);
    EXPECT_TRUE(contentsOf(output) == message());
}

TEST_F(NativeMessagingLauncherTest, WithTheServiceItBecomesTheHostWithTheBrowsersArguments)
{
    putFile(m_launcher.serviceMarker, "");
    for (const auto& shell : shells()) {
        EXPECT_EQ(run(shell), "<chrome-extension://abc/><a  \"b\">") << shell;
        EXPECT_FALSE(m_trace.contains("sleep")) << m_trace;
    }
}

TEST_F(NativeMessagingLauncherTest, WhileItCannotTellOrHasNoHostItSaysNothingAndSleeps)
{
    const std::pair<const char*, std::function<void()>> preparations[] {
        { "the marker is a dangling link",
            [this] { std::filesystem::create_symlink("nowhere", m_launcher.serviceMarker); } },
        { "the service is there, its host cannot be run",
            [this] {
                std::filesystem::remove(m_launcher.serviceMarker);
                putFile(m_launcher.serviceMarker, "");
                std::filesystem::permissions(m_launcher.host, std::filesystem::perms::owner_read);
            } },
        { "the service is there, its host is not", [this] { std::filesystem::remove(m_launcher.host); } },
        { "nobody can say whether the service is there",
            [this] { std::filesystem::remove_all(m_launcher.markerFolder); } },
    };
    for (const auto& [what, prepare] : preparations) {
        prepare();
        for (const auto& shell : shells()) {
            EXPECT_EQ(run(shell), "") << what << ", " << shell;
            EXPECT_TRUE(sleptAtTheEnd()) << what << ", " << m_trace;
        }
    }
}

}
