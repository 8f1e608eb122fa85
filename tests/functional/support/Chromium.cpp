#include "support/Chromium.h"

#include "support/FileContents.h"

#include <csignal>
#include <sstream>
#include <unistd.h>

namespace brevanta::functional {

std::expected<std::unique_ptr<Chromium>, std::string> Chromium::start(const ChromiumOptions& options)
{
    std::unique_ptr<Chromium> browser(new Chromium(options.userData));
    if (!browser->m_home.isValid())
        return std::unexpected("no temporary directory for the browser");
    std::vector<std::string> arguments { "chromium", "--headless", "--disable-gpu", "--no-first-run",
        "--disable-background-networking", "--disable-component-update", "--disable-sync", "--enable-logging=stderr",
        "--user-data-dir=" + options.userData.string(), "--disable-extensions-except=" + options.extension.string(),
        "--load-extension=" + options.extension.string() };
    // Its sandbox is not for root.
    if (::geteuid() == 0)
        arguments.emplace_back("--no-sandbox");
    arguments.emplace_back("about:blank");
    auto process = ChildProcess::start({ .arguments = std::move(arguments), .environment = browser->environment() });
    if (!process)
        return std::unexpected("the browser cannot be started: " + process.error());
    browser->m_process = std::move(*process);
    return browser;
}

std::vector<std::string> Chromium::environment() const
{
    auto environment = neutralEnvironment();
    std::erase_if(environment,
        [](const std::string& entry) { return entry.starts_with("HOME=") || entry.starts_with("TMPDIR="); });
    environment.push_back("HOME=" + m_home.path().string());
    environment.push_back("TMPDIR=" + m_home.path().string());
    // Without an address it would look for a bus of the user's session, or start one.
    environment.emplace_back("DBUS_SESSION_BUS_ADDRESS=disabled:");
    return environment;
}

nlohmann::json Chromium::awaitTold(std::size_t count, Milliseconds within) const
{
    static constexpr std::string_view before = R"(] "told )";
    static constexpr std::string_view after = R"(", source: chrome-extension://)";
    auto told = nlohmann::json::array();
    const auto isEnough = [&] {
        told.clear();
        std::istringstream lines(log());
        for (std::string line; std::getline(lines, line);) {
            const auto start = line.find(before);
            const auto end = line.rfind(after);
            if (start != std::string::npos && end != std::string::npos)
                told.push_back(
                    nlohmann::json::parse(line.substr(0, end).substr(start + before.size()), nullptr, false));
        }
        return told.size() >= count;
    };
    (void)awaitUntil(isEnough, within);
    return told;
}

std::vector<pid_t> Chromium::processes() const
{
    return processesThat([this](const std::filesystem::path& directory) {
        return contentsOf(directory / "environ").contains("HOME=" + m_home.path().string())
            || contentsOf(directory / "cmdline").contains(m_userData.string());
    });
}

bool Chromium::end(Milliseconds within)
{
    m_process->end(within);
    ::kill(-m_process->id(), SIGKILL);
    return awaitByAsking([this] { return processes().empty(); }, within);
}

}
