#pragma once

#include "support/ChildProcess.h"
#include "support/TemporaryDirectory.h"

#include <nlohmann/json.hpp>

namespace brevanta::functional {

struct ChromiumOptions {
    std::filesystem::path userData; // Holds NativeMessagingHosts, where user-level hosts are looked for.
    std::filesystem::path extension; // The unpacked extension to be loaded, and no other.
};

// A real browser without a window, with a home of its own. Its extension tells the test something by console.log("told
// " + JSON), one line each.
class Chromium {
public:
    [[nodiscard]] static std::expected<std::unique_ptr<Chromium>, std::string> start(const ChromiumOptions&);

    // All that the extension has told, in order, as an array: once it is so much, or when the time is up.
    [[nodiscard]] nlohmann::json awaitTold(std::size_t count, Milliseconds within) const;

    // The processes that run for it, native-messaging hosts included: known by its home in their environment or by its
    // user data in their arguments, since some leave its group.
    [[nodiscard]] std::vector<pid_t> processes() const;
    // The browser ends, and with it the hosts that it would leave behind. False when something goes on regardless.
    [[nodiscard]] bool end(Milliseconds within);

    [[nodiscard]] const std::string& log() const { return m_process->errors().text(); }

private:
    explicit Chromium(std::filesystem::path userData)
        : m_userData(std::move(userData))
    {
    }
    [[nodiscard]] std::vector<std::string> environment() const;

    std::filesystem::path m_userData;
    TemporaryDirectory m_home;
    std::unique_ptr<ChildProcess> m_process;
};

}
