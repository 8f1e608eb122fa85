#include "service/CommandLine.h"
#include "service/LaunchLedger.h"
#include "service/RemovalExecution.h"
#include "service/ServiceLoop.h"
#include "service/SignalWatch.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

using namespace brevanta::service;

static constexpr int failed = 1;
static constexpr int misused = 2;

static int complain(const ServiceError& error, int exitStatus)
{
    std::fprintf(stderr, "brevanta-service: %s\n", error.message.c_str());
    return exitStatus;
}

static void print(const std::string& line)
{
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

static std::string randomUuid()
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::random_device source;
    std::string text = "xxxxxxxx-xxxx-4xxx-8xxx-xxxxxxxxxxxx";
    for (auto& character : text) {
        if (character == 'x')
            character = digits[source() % 16];
    }
    return text;
}

// The machine's own boot session where it tells one, so that it stays the same over restarts of the service.
static std::string bootSession()
{
    std::string text;
    std::ifstream file("/proc/sys/kernel/random/boot_id");
    if (std::getline(file, text) && !text.empty())
        return text;
    return randomUuid();
}

static double secondsOf(std::chrono::nanoseconds duration) { return std::chrono::duration<double>(duration).count(); }

static ServiceIdentity makeIdentity(std::uint64_t launchOrder)
{
    const auto uptime = std::chrono::steady_clock::now().time_since_epoch();
    return {
        .bootId = randomUuid(),
        .launch = randomUuid(),
        .launchOrder = launchOrder,
        .leaseBootSession = bootSession(),
        .epochAtStart = secondsOf(std::chrono::system_clock::now().time_since_epoch()),
        .uptimeAtStartNs
        = static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(uptime).count()),
        .version = BREVANTA_SERVICE_VERSION,
    };
}

static int serve(const CommandLine& commandLine)
{
    Scenario scenario;
    if (commandLine.scenarioPath) {
        auto loaded = Scenario::load(*commandLine.scenarioPath);
        if (!loaded)
            return complain(loaded.error(), misused);
        scenario = std::move(*loaded);
    }
    std::uint64_t launchOrder = 1;
    if (commandLine.statePath) {
        const auto order = takeNextLaunchOrder(*commandLine.statePath);
        if (!order)
            return complain(order.error(), failed);
        launchOrder = *order;
    }

    std::optional<RemovalOnDisk> removalOnDisk;
    if (commandLine.rootPath) {
        const auto opened = RemovalOnDisk::open(*commandLine.rootPath);
        if (!opened)
            return complain(opened.error(), failed);
        removalOnDisk = *opened;
    }

    const SignalWatch signals;
    Service service(makeIdentity(launchOrder));
    std::optional<RemovalExecution> removal;
    if (removalOnDisk)
        removal.emplace(service, *removalOnDisk, commandLine.removalTimes);
    const auto startedAt = std::chrono::steady_clock::now();
    ServiceLoop loop(service, std::move(scenario),
        {
            .socketPath = commandLine.socketPath,
            .controlPath = commandLine.controlPath,
            .logDetail = commandLine.logDetail,
            .clock = [startedAt] { return secondsOf(std::chrono::steady_clock::now() - startedAt); },
            .print = print,
            .removal = removal ? &*removal : nullptr,
        });
    loop.quitWhenReadable(signals.descriptor());
    if (commandLine.takesStandardInput)
        loop.addCommandChannel(FileDescriptor(::dup(STDIN_FILENO)), FileDescriptor(::dup(STDOUT_FILENO)));
    if (const auto started = loop.start(); !started)
        return complain(started.error(), failed);
    print("listening on " + commandLine.socketPath);
    if (const auto ran = loop.run(); !ran)
        return complain(ran.error(), failed);
    return 0;
}

int main(int argumentCount, char** arguments)
{
    const auto commandLine = CommandLine::parse(std::vector<std::string>(arguments + 1, arguments + argumentCount));
    if (!commandLine)
        return complain({ commandLine.error().message + " (see --help)" }, misused);
    switch (commandLine->purpose) {
    case CommandLine::Purpose::showHelp:
        std::fputs(std::string(CommandLine::help()).c_str(), stdout);
        return 0;
    case CommandLine::Purpose::showVersion:
        std::puts("brevanta-service " BREVANTA_SERVICE_VERSION);
        return 0;
    case CommandLine::Purpose::serve:
        return serve(*commandLine);
    }
    return failed;
}
