#include "gtk/standin/StandInStore.h"

#include "posix/AtomicFile.h"
#include "posix/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <utility>

namespace brevanta {

namespace {

constexpr mode_t fileMode = 0644;
constexpr std::size_t mostBytes = std::size_t { 1 } << 20;

std::string errorText() { return std::generic_category().message(errno); }

// Nothing when there is no file.
std::expected<std::optional<std::string>, StandInError> readText(const std::filesystem::path& file)
{
    // Opening a named pipe would wait for its other end.
    const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor && (errno == ENOENT || errno == ENOTDIR))
        return std::nullopt;
    struct stat status {};
    if (!descriptor || ::fstat(descriptor.get(), &status))
        return standInError(errorText());
    if (!S_ISREG(status.st_mode))
        return standInError("is no regular file");
    std::string text;
    std::array<char, 4096> piece {};
    while (text.size() <= mostBytes) {
        const auto count = ::read(descriptor.get(), piece.data(), piece.size());
        if (count == 0)
            return text;
        if (count < 0 && errno != EINTR)
            return standInError(errorText());
        text.append(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return standInError("is too large");
}

template <typename State>
std::expected<State, StandInError> inFile(std::expected<State, StandInError> state, const std::filesystem::path& file)
{
    if (!state)
        return standInError(file.string() + ": " + state.error().message);
    return state;
}

template <typename State, typename Decode>
std::expected<State, StandInError> readState(const std::filesystem::path& file, const Decode& decode)
{
    const auto text = readText(file);
    if (!text)
        return inFile<State>(std::unexpected(text.error()), file);
    return *text ? inFile<State>(decode(**text), file) : State();
}

// flock(2): released when the descriptor is closed, however the process ends.
std::expected<FileDescriptor, StandInError> lock(const std::filesystem::path& file)
{
    constexpr int mostAttempts = 1000;
    auto path = file;
    path += ".lock";
    FileDescriptor descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, fileMode));
    if (!descriptor)
        return standInError(path.string() + ": " + errorText());
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        if (!::flock(descriptor.get(), LOCK_EX | LOCK_NB))
            return descriptor;
        if (errno != EWOULDBLOCK && errno != EINTR)
            return standInError(path.string() + ": " + errorText());
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return standInError(path.string() + ": somebody else holds it");
}

template <typename State, typename Decode>
std::expected<State, StandInError> changeState(
    const std::filesystem::path& file, const Decode& decode, const StandInStore::Change<State>& change)
{
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    if (error)
        return standInError(file.parent_path().string() + ": " + error.message());
    const auto held = lock(file);
    if (!held)
        return std::unexpected(held.error());
    const auto before = readState<State>(file, decode);
    auto after = change(before);
    if (!after || (before && *before == *after))
        return after;
    if (const auto written = writeFileAtomically(file, encode(*after), fileMode); !written)
        return standInError(file.string() + ": " + describe(written.error()));
    return after;
}

}

StandInStore::StandInStore(const std::filesystem::path& root)
    : m_filterFile(root / "var/db/systemextensions.json")
    , m_serviceFile(root / "var/db/launchd.json")
    , m_workspaceFile(root / "var/db/workspace.json")
    , m_updaterFile(root / "var/db/updater.json")
{
}

StandInStore::Read<FilterStandIn> StandInStore::filter() const
{
    return readState<FilterStandIn>(m_filterFile, decodeFilterStandIn);
}

StandInStore::Read<ServiceStandIn> StandInStore::service() const
{
    return readState<ServiceStandIn>(m_serviceFile, decodeServiceStandIn);
}

StandInStore::Read<WorkspaceStandIn> StandInStore::workspace() const
{
    return readState<WorkspaceStandIn>(m_workspaceFile, decodeWorkspaceStandIn);
}

StandInStore::Read<UpdaterStandIn> StandInStore::updater() const
{
    return readState<UpdaterStandIn>(m_updaterFile, decodeUpdaterStandIn);
}

StandInStore::Read<FilterStandIn> StandInStore::changeFilter(const Change<FilterStandIn>& change) const
{
    return changeState<FilterStandIn>(m_filterFile, decodeFilterStandIn, change);
}

StandInStore::Read<ServiceStandIn> StandInStore::changeService(const Change<ServiceStandIn>& change) const
{
    return changeState<ServiceStandIn>(m_serviceFile, decodeServiceStandIn, change);
}

StandInStore::Read<WorkspaceStandIn> StandInStore::changeWorkspace(const Change<WorkspaceStandIn>& change) const
{
    return changeState<WorkspaceStandIn>(m_workspaceFile, decodeWorkspaceStandIn, change);
}

StandInStore::Read<UpdaterStandIn> StandInStore::changeUpdater(const Change<UpdaterStandIn>& change) const
{
    return changeState<UpdaterStandIn>(m_updaterFile, decodeUpdaterStandIn, change);
}

}
