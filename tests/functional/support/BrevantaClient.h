#pragma once

#include "support/DbusMenu.h"
#include "support/StatusNotifier.h"
#include "support/TemporaryDirectory.h"

namespace brevanta::functional {

struct BrevantaClientOptions {
    std::string executable {}; // Of the built bundle, which is copied into a development root of the client's own.
    std::string busAddress {}; // Empty for none.
    std::string display {}; // Empty for none.
    std::string socketPath {};
    std::string logPath {}; // Where the log is kept besides; empty for nowhere.
    std::vector<std::string> arguments {};
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

    [[nodiscard]] std::expected<void, std::string> start();
    [[nodiscard]] ChildProcess& process() { return *m_process; }
    // What it has written to standard error; empty before it was started.
    [[nodiscard]] std::string log() const { return m_process ? m_process->errors().text() : std::string(); }

private:
    [[nodiscard]] std::expected<std::string, std::string> installBundle();

    BrevantaClientOptions m_options;
    TemporaryDirectory m_directory;
    std::string m_executable;
    std::unique_ptr<ChildProcess> m_process;
};

// Where the executables to be tested are: where this build put them, unless the environment names others
// (BREVANTA_TEST_CLIENT, BREVANTA_TEST_PROD_CLIENT, BREVANTA_TEST_SERVICE).
[[nodiscard]] std::string clientExecutable();
[[nodiscard]] std::string prodClientExecutable();
[[nodiscard]] std::string serviceExecutable();

}
