#pragma once

#include "support/ChildProcess.h"
#include "support/TemporaryDirectory.h"

namespace brevanta::functional {

// The stand-in for the web server, and the commands that drive it and the page that it serves.
class StandInWeb {
public:
    // Not running yet. The back end is the stand-in service that takes commands at the path. An empty folder of pages
    // serves none but the demo application.
    StandInWeb(std::string executable, std::string serviceControlPath, std::string pagesFolder);

    // Starts the process, once more on the same ports after `stop`, and waits until it can be talked to.
    [[nodiscard]] std::expected<void, std::string> start();
    void stop();

    // "https://localhost:PORT/", and the origins of two further listeners: another port, and plain HTTP.
    [[nodiscard]] const std::string& url() const { return m_url; }
    [[nodiscard]] const std::string& secondUrl() const { return m_secondUrl; }
    [[nodiscard]] const std::string& plainUrl() const { return m_plainUrl; }
    [[nodiscard]] std::string certificatePath() const { return (m_directory.path() / "own.pem").string(); }

    // One command; what follows "ok" in the answer, or what follows "error: ".
    [[nodiscard]] std::expected<std::string, std::string> command(
        const std::string& line, Milliseconds within = Milliseconds(30000)) const;

    // The JSON of what the expression gives in the page that shows the demo application.
    [[nodiscard]] std::expected<std::string, std::string> evaluate(const std::string& expression) const
    {
        return command("evaluate " + expression);
    }
    // Until the expression is true there; asks again and again, since pages announce nothing.
    [[nodiscard]] bool awaitTrue(const std::string& expression, Milliseconds within = Milliseconds(20000)) const;

private:
    [[nodiscard]] std::expected<void, std::string> makeCertificates() const;
    [[nodiscard]] std::string controlPath() const { return (m_directory.path() / "control.sock").string(); }

    std::string m_executable;
    std::string m_serviceControlPath;
    std::string m_pagesFolder;
    TemporaryDirectory m_directory;
    std::string m_url;
    std::string m_secondUrl;
    std::string m_plainUrl;
    std::unique_ptr<ChildProcess> m_process;
};

}
