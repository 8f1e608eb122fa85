#pragma once

#include "support/DbusMenu.h"
#include "support/StatusNotifier.h"
#include "support/TemporaryDirectory.h"

namespace brevanta::functional {

enum class BundleVolume { writable, readOnly };

struct BrevantaClientOptions {
    std::string executable {}; // Of the built bundle, which is copied into a development root of the client's own.
    std::string busAddress {}; // Empty for none.
    std::string display {}; // Empty for none.
    std::string socketPath {};
    std::string logPath {}; // Where the log is kept besides; empty for nowhere.
    std::vector<std::string> arguments {};
    std::string appUrl {}; // Of the web application.
    std::string certificatePath {}; // Of its server.
    std::string trustedHosts { "localhost" };
    std::string signInHosts {};
    std::filesystem::path bundleFolder { "Applications" }; // Below the development root: where the copy goes.
    BundleVolume volume { BundleVolume::writable }; // Read-only: the bundle as bwrap(1) mounts it for the client.
    std::vector<std::pair<std::string, std::string>> variables {}; // Further ones of the client's environment.
};

// The client as a process, with a home, a runtime directory and a development root of its own.
class BrevantaClient {
public:
    static constexpr auto busName = "com.brevanta.KestreluneMac";
    static constexpr auto windowTitle = "Brevanta";

    explicit BrevantaClient(BrevantaClientOptions);

    // The same client once more, while the first runs or after it has ended, with the same directories.
    [[nodiscard]] std::expected<std::unique_ptr<ChildProcess>, std::string> startProcess(
        const std::vector<std::string>& arguments) const;

    // What the client says on the command line of a login without a display and a bus, and its exit status; nothing
    // when it does not end in time.
    struct CommandLineAnswer {
        int exitStatus;
        std::string output;
        std::string errors;
    };
    [[nodiscard]] std::optional<CommandLineAnswer> ask(
        const std::vector<std::string>& arguments, Milliseconds within) const;

    // What the desktop does with a link: opens it with the application whose desktop entry takes its scheme.
    [[nodiscard]] std::expected<std::unique_ptr<ChildProcess>, std::string> openLink(const std::string& link) const;

    [[nodiscard]] std::expected<void, std::string> start();
    // Once the process has ended; its log begins anew.
    [[nodiscard]] std::expected<void, std::string> startAgain();

    // Where the client keeps what it stores, and the folder that stands for the machine's.
    [[nodiscard]] std::filesystem::path root() const { return m_directory.path() / "root"; }

    // Changes what stands for the system's side of filter and service, as the user or the system would: one command of
    // brevanta-system. What it says went wrong, otherwise.
    [[nodiscard]] std::expected<void, std::string> changeSystem(const std::vector<std::string>& command) const;

    // The file that the client shares with the content filter.
    [[nodiscard]] std::filesystem::path sharedStateFile() const;

    // The URLs that the client had opened by the user's browser or as the system's settings, one in each line.
    [[nodiscard]] std::filesystem::path openedUrlsFile() const { return m_directory.path() / "home" / "opened-urls"; }

    [[nodiscard]] ChildProcess& process() { return *m_process; }
    // Kills the process in which the page lives, and waits until it has gone; false when there is none.
    [[nodiscard]] bool killWebProcess(Milliseconds within);
    // What it has written to standard error; empty before it was started.
    [[nodiscard]] std::string log() const { return m_process ? m_process->errors().text() : std::string(); }
    // The same of all starts, from the first on.
    [[nodiscard]] std::string wholeLog() const { return m_earlierLogs + log(); }

private:
    [[nodiscard]] std::optional<pid_t> webProcess() const;
    [[nodiscard]] std::expected<std::string, std::string> installBundle();
    [[nodiscard]] std::vector<std::string> commandLine(const std::vector<std::string>& arguments) const;
    [[nodiscard]] std::expected<void, std::string> installBrowser() const;
    [[nodiscard]] std::expected<void, std::string> installDesktopEntry() const;
    enum class Session { desktop, none };
    [[nodiscard]] std::vector<std::string> environment(Session session = Session::desktop) const;

    BrevantaClientOptions m_options;
    TemporaryDirectory m_directory;
    std::string m_executable;
    std::unique_ptr<ChildProcess> m_process;
    std::string m_earlierLogs;
};

// Where the executables to be tested are: where this build put them, unless the environment names others
// (BREVANTA_TEST_CLIENT, BREVANTA_TEST_PROD_CLIENT, BREVANTA_TEST_SERVICE, BREVANTA_TEST_WEB, BREVANTA_TEST_SYSTEM).
[[nodiscard]] std::string clientExecutable();
[[nodiscard]] std::string prodClientExecutable();
[[nodiscard]] std::string serviceExecutable();
[[nodiscard]] std::string webExecutable();
[[nodiscard]] std::string systemExecutable();

}
