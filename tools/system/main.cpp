#include "gtk/standin/ServiceProcessControl.h"
#include "posix/AtomicFile.h"
#include "posix/ServiceProgram.h"
#include "system/CommandLine.h"

#include <cstdio>
#include <string>
#include <vector>

using namespace brevanta;
using namespace brevanta::system_tool;

namespace {

constexpr int failed = 1;
constexpr int misused = 2;

using Done = std::expected<void, StandInError>;

Done withoutValue(const auto& changed) { return changed ? Done() : Done(std::unexpected(changed.error())); }

// A program that does nothing, unless there is one already.
Done installProgram(const std::filesystem::path& root)
{
    constexpr mode_t programMode = 0755;
    if (isServiceProgramInstalled(root))
        return {};
    const auto program = serviceProgram(root);
    std::error_code error;
    std::filesystem::create_directories(program.parent_path(), error);
    if (error)
        return standInError(program.parent_path().string() + ": " + error.message());
    if (const auto written = writeFileAtomically(program, "#!/bin/sh\nexit 0\n", programMode); !written)
        return standInError(program.string() + ": " + describe(written.error()));
    return {};
}

Done removeProgram(const std::filesystem::path& root)
{
    const auto program = serviceProgram(root);
    std::error_code error;
    std::filesystem::remove(program, error);
    return error ? Done(standInError(program.string() + ": " + error.message())) : Done();
}

Done changeProgram(const std::filesystem::path& root, ProgramChange change)
{
    switch (change) {
    case ProgramChange::none:
        break;
    case ProgramChange::install:
        return installProgram(root);
    case ProgramChange::remove:
        return removeProgram(root);
    }
    return {};
}

class Runner {
public:
    explicit Runner(const std::filesystem::path& root)
        : m_root(root)
        , m_store(root)
    {
    }

    Done operator()(const FilterChange& change) const { return withoutValue(m_store.changeFilter(change)); }

    Done operator()(const ServiceCommand& command) const
    {
        std::optional<ServiceProcess> before;
        const auto changed = m_store.changeService([&](const StandInStore::Read<ServiceStandIn>& current) {
            before = current ? current->process : std::nullopt;
            return command.change(current);
        });
        if (!changed)
            return std::unexpected(changed.error());
        if (before && !changed->process)
            endServiceProcess(*before);
        return changeProgram(m_root, command.program);
    }

    Done operator()(const AppChange& change) const { return withoutValue(m_store.changeWorkspace(change)); }

    Done operator()(const UpdaterChange& change) const { return withoutValue(m_store.changeUpdater(change)); }

    Done operator()(ShowCommand) const
    {
        const auto filter = m_store.filter();
        if (!filter)
            return std::unexpected(filter.error());
        const auto service = m_store.service();
        if (!service)
            return std::unexpected(service.error());
        const auto workspace = m_store.workspace();
        if (!workspace)
            return std::unexpected(workspace.error());
        const auto updater = m_store.updater();
        if (!updater)
            return std::unexpected(updater.error());
        std::printf("filter %sservice %sapp %supdater %sprogram %s\n", encode(*filter).c_str(),
            encode(*service).c_str(), encode(*workspace).c_str(), encode(*updater).c_str(),
            isServiceProgramInstalled(m_root) ? "installed" : "missing");
        return {};
    }

    Done operator()(HelpCommand) const
    {
        std::fputs(commandUsage().c_str(), stdout);
        return {};
    }

private:
    const std::filesystem::path& m_root;
    StandInStore m_store;
};

int complain(const std::string& message, int exitStatus)
{
    std::fprintf(stderr, "brevanta-system: %s\n", message.c_str());
    return exitStatus;
}

int run(const CommandLine& commandLine)
{
    // A mistyped root would otherwise become a new one that no client looks into.
    std::error_code error;
    if (!std::filesystem::is_directory(commandLine.root, error))
        return complain(commandLine.root.string() + " is no folder", failed);
    const auto done = std::visit(Runner(commandLine.root), commandLine.command);
    return done ? 0 : complain(done.error().message, failed);
}

}

int main(int argumentCount, char** arguments)
{
    const auto commandLine = CommandLine::parse(
        std::vector<std::string>(arguments + 1, arguments + argumentCount), BREVANTA_SYSTEM_VERSION);
    if (!commandLine)
        return complain(commandLine.error().message + " (see help)", misused);
    switch (commandLine->purpose) {
    case CommandLine::Purpose::showHelp:
        std::fputs(CommandLine::help().c_str(), stdout);
        return 0;
    case CommandLine::Purpose::showVersion:
        std::puts("brevanta-system " BREVANTA_SYSTEM_VERSION);
        return 0;
    case CommandLine::Purpose::run:
        return run(*commandLine);
    }
    return failed;
}
