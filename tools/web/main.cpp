#include "web/Command.h"
#include "web/CommandChannels.h"
#include "web/CommandLine.h"

#include <csignal>
#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

using namespace brevanta::web;
using brevanta::service::FileDescriptor;
using brevanta::service::ServiceError;

static constexpr int failed = 1;
static constexpr int misused = 2;

static int complain(const ServiceError& error, int exitStatus)
{
    std::fprintf(stderr, "brevanta-web: %s\n", error.message.c_str());
    return exitStatus;
}

static void print(const std::string& line)
{
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

static std::expected<std::vector<LoopbackPort>, ServiceError> takePorts(const CommandLine& commandLine)
{
    const std::pair<std::optional<std::uint16_t>, LoopbackPort::Scheme> wanted[] = {
        { commandLine.port, LoopbackPort::Scheme::https },
        { commandLine.secondPort, LoopbackPort::Scheme::https },
        { commandLine.plainPort, LoopbackPort::Scheme::http },
    };
    std::vector<LoopbackPort> ports;
    for (const auto& [number, scheme] : wanted) {
        if (!number)
            continue;
        auto port = LoopbackPort::take(*number, scheme);
        if (!port)
            return std::unexpected(port.error());
        ports.push_back(std::move(*port));
    }
    return ports;
}

static std::expected<WebServer::Options, ServiceError> makeOptions(const CommandLine& commandLine)
{
    auto ports = takePorts(commandLine);
    if (!ports)
        return std::unexpected(ports.error());
    auto certificate = loadCertificate(commandLine.certificate);
    if (!certificate)
        return std::unexpected(certificate.error());
    GLibPointer<GTlsCertificate> otherCertificate;
    if (commandLine.otherCertificate) {
        auto loaded = loadCertificate(*commandLine.otherCertificate);
        if (!loaded)
            return std::unexpected(loaded.error());
        otherCertificate = std::move(*loaded);
    }
    Site::Scripts scripts;
    scripts.driver = commandLine.hasDriver;
    scripts.day = !commandLine.serviceControlPath.empty();
    return WebServer::Options {
        .ports = std::move(*ports),
        .certificate = std::move(*certificate),
        .otherCertificate = std::move(otherCertificate),
        .site = Site(BREVANTA_WEB_SITE, commandLine.pagesDirectory, scripts),
        .driver = commandLine.hasDriver ? std::make_unique<PageDriver>() : nullptr,
        .backEnd = scripts.day ? std::optional<BackEnd>(commandLine.serviceControlPath) : std::nullopt,
        .print = commandLine.logsRequests ? print : std::function<void(const std::string&)>(),
    };
}

static int serve(const CommandLine& commandLine)
{
    auto options = makeOptions(commandLine);
    if (!options)
        return complain(options.error(), failed);
    const GLibPointer<GMainLoop> loop(g_main_loop_new(nullptr, FALSE));
    const auto quit = [&] { g_main_loop_quit(loop.get()); };
    const auto terminated = EventSource::whenSignalled(SIGTERM, quit);
    const auto interrupted = EventSource::whenSignalled(SIGINT, quit);
    auto server = WebServer::start(std::move(*options));
    if (!server)
        return complain(server.error(), failed);
    CommandChannels channels(
        [&](const std::string& line, const Answer& answer) { runCommand(**server, quit, line, answer); });
    if (!commandLine.controlPath.empty()) {
        if (const auto listening = channels.listen(commandLine.controlPath); !listening)
            return complain(listening.error(), failed);
    }
    for (const auto& port : (*server)->ports())
        print("listening on " + port.url());
    if (commandLine.takesStandardInput)
        channels.add(FileDescriptor(::dup(STDIN_FILENO)), FileDescriptor(::dup(STDOUT_FILENO)));
    g_main_loop_run(loop.get());
    return 0;
}

static int makeCertificateFiles(const CommandLine& commandLine)
{
    const auto files = makeCertificate(commandLine.certificateDirectory, commandLine.certificateStem);
    if (!files)
        return complain(files.error(), failed);
    print(files->certificate.string());
    print(files->key.string());
    return 0;
}

int main(int argumentCount, char** arguments)
{
    // A command's answer that nobody takes any more is no reason to end.
    std::signal(SIGPIPE, SIG_IGN);
    const auto commandLine = CommandLine::parse(std::vector<std::string>(arguments + 1, arguments + argumentCount));
    if (!commandLine)
        return complain({ commandLine.error().message + " (see --help)" }, misused);
    switch (commandLine->purpose) {
    case CommandLine::Purpose::showHelp:
        std::fputs(std::string(CommandLine::help()).c_str(), stdout);
        return 0;
    case CommandLine::Purpose::showVersion:
        std::puts("brevanta-web " BREVANTA_WEB_VERSION);
        return 0;
    case CommandLine::Purpose::makeCertificate:
        return makeCertificateFiles(*commandLine);
    case CommandLine::Purpose::serve:
        return serve(*commandLine);
    }
    return failed;
}
