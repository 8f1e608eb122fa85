#include "support/StandInWeb.h"

#include "support/ControlChannel.h"

namespace brevanta::functional {

static constexpr Milliseconds startTime { 10000 };

// The rest of the line that begins with the text; empty when there is none.
static std::string lineAfter(const std::string& text, const std::string& beginning, std::size_t& position)
{
    const auto at = text.find(beginning, position);
    if (at == std::string::npos)
        return {};
    const auto start = at + beginning.size();
    const auto end = text.find('\n', start);
    position = end;
    return text.substr(start, end - start);
}

// "https://localhost:1234/" names the port 1234.
static std::string portOf(const std::string& url)
{
    const auto colon = url.rfind(':');
    return colon == std::string::npos ? "0" : url.substr(colon + 1, url.rfind('/') - colon - 1);
}

StandInWeb::StandInWeb(std::string executable, std::string serviceControlPath, std::string pagesFolder)
    : m_executable(std::move(executable))
    , m_serviceControlPath(std::move(serviceControlPath))
    , m_pagesFolder(std::move(pagesFolder))
{
}

std::expected<void, std::string> StandInWeb::makeCertificates() const
{
    for (const auto* stem : { "own", "other" }) {
        const auto maker = ChildProcess::start(
            { .arguments = { m_executable, "--make-certificate", m_directory.path().string(), "--name", stem },
                .environment = neutralEnvironment() });
        if (!maker)
            return std::unexpected(maker.error());
        if ((*maker)->awaitExit(startTime) != 0)
            return std::unexpected("no certificate could be made: " + (*maker)->errors().text());
    }
    return {};
}

std::expected<void, std::string> StandInWeb::start()
{
    if (m_url.empty()) {
        if (auto made = makeCertificates(); !made)
            return made;
    }
    const auto file = [this](const char* name) { return (m_directory.path() / name).string(); };
    std::vector<std::string> arguments { m_executable, "--listen", portOf(m_url), "--second-listen",
        portOf(m_secondUrl), "--http-listen", portOf(m_plainUrl), "--certificate", file("own.pem"), "--key",
        file("own-key.pem"), "--other-certificate", file("other.pem"), "--other-key", file("other-key.pem"),
        "--control", controlPath(), "--service-control", m_serviceControlPath, "--driver" };
    if (!m_pagesFolder.empty())
        arguments.insert(arguments.end(), { "--pages", m_pagesFolder });
    auto process = ChildProcess::start({ .arguments = std::move(arguments), .environment = neutralEnvironment() });
    if (!process)
        return std::unexpected("the stand-in for the web server cannot be started: " + process.error());
    m_process = std::move(*process);
    if (!m_process->output().awaitText("listening on http://", startTime))
        return std::unexpected("the stand-in for the web server did not start: " + m_process->errors().text());
    const auto output = m_process->output().text();
    std::size_t position = 0;
    m_url = lineAfter(output, "listening on ", position);
    m_secondUrl = lineAfter(output, "listening on ", position);
    m_plainUrl = lineAfter(output, "listening on ", position);
    return {};
}

void StandInWeb::stop()
{
    if (m_process)
        m_process->end();
}

std::expected<std::string, std::string> StandInWeb::command(const std::string& line, Milliseconds within) const
{
    return sendCommand(controlPath(), line, within);
}

bool StandInWeb::awaitTrue(const std::string& expression, Milliseconds within) const
{
    return awaitByAsking([&] { return evaluate(expression) == "true"; }, within);
}

}
