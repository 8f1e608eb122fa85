#include "gtk/ShellProcess.h"

#include <algorithm>
#include <array>
#include <utility>

namespace brevanta {

namespace {

constexpr std::size_t mostBytes = std::size_t { 1 } << 16;
constexpr std::size_t pieceBytes = 4096;

// More than a pipe holds (pipe(7)): who goes on writing into it after the shell's end is not listened to for ever.
constexpr int mostPiecesAfterTheEnd = 256;

// Commands of a text whose reader has gone fail where they would otherwise end, so that the text is carried out to its
// end all the same.
constexpr const char* beforeTheText = "trap '' PIPE\n";

}

ShellProcess::Reader::Reader(GInputStream* stream)
    : m_stream(share(G_POLLABLE_INPUT_STREAM(stream)))
    , m_source(g_pollable_input_stream_create_source(m_stream.get(), nullptr))
{
    g_source_set_callback(m_source, G_SOURCE_FUNC(isReadable), this, nullptr);
    g_source_attach(m_source, nullptr);
}

ShellProcess::Reader::~Reader()
{
    g_source_destroy(m_source);
    g_source_unref(m_source);
}

gboolean ShellProcess::Reader::isReadable(GObject*, gpointer reader)
{
    // One piece at a time: whoever writes without end must not keep the main loop from anything else.
    return static_cast<Reader*>(reader)->readPiece() == Piece::none ? G_SOURCE_REMOVE : G_SOURCE_CONTINUE;
}

ShellProcess::Reader::Piece ShellProcess::Reader::readPiece()
{
    std::array<char, pieceBytes> piece {};
    GError* error = nullptr;
    const auto count
        = g_pollable_input_stream_read_nonblocking(m_stream.get(), piece.data(), piece.size(), nullptr, &error);
    const GLibPtr<GError> owned(error);
    if (count <= 0)
        return g_error_matches(error, G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK) ? Piece::notYet : Piece::none;
    m_text.append(piece.data(), std::min(static_cast<std::size_t>(count), mostBytes - m_text.size()));
    return Piece::read;
}

std::string ShellProcess::Reader::takeRest()
{
    for (int pieces = 0; pieces < mostPiecesAfterTheEnd && readPiece() == Piece::read;)
        ++pieces;
    return std::move(m_text);
}

std::expected<std::unique_ptr<ShellProcess>, std::string> ShellProcess::start(
    const std::string& script, const ShellSurroundings& surroundings, std::function<void(ShellEnd)> onEnd)
{
    const GObjectPtr<GSubprocessLauncher> launcher(g_subprocess_launcher_new(
        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_PIPE)));
    g_subprocess_launcher_set_cwd(launcher.get(), surroundings.folder.c_str());
    g_subprocess_launcher_setenv(launcher.get(), "PATH", surroundings.searchPath.c_str(), TRUE);
    g_subprocess_launcher_setenv(launcher.get(), "STANDIN_ROOT", surroundings.root.c_str(), TRUE);
    const auto text = beforeTheText + script;
    const char* const arguments[] = { "/bin/sh", "-c", text.c_str(), nullptr };
    GError* error = nullptr;
    GObjectPtr<GSubprocess> process(g_subprocess_launcher_spawnv(launcher.get(), arguments, &error));
    if (!process) {
        const GLibPtr<GError> owned(error);
        return std::unexpected(std::string(owned->message));
    }
    return std::unique_ptr<ShellProcess>(new ShellProcess(std::move(process), std::move(onEnd)));
}

ShellProcess::ShellProcess(GObjectPtr<GSubprocess> process, std::function<void(ShellEnd)> onEnd)
    : m_process(std::move(process))
    , m_output(g_subprocess_get_stdout_pipe(m_process.get()))
    , m_errors(g_subprocess_get_stderr_pipe(m_process.get()))
    , m_onEnd(std::move(onEnd))
{
    g_subprocess_wait_async(m_process.get(), m_cancellable.get(), ended, this);
}

ShellProcess::~ShellProcess() { g_cancellable_cancel(m_cancellable.get()); }

void ShellProcess::ended(GObject* process, GAsyncResult* result, gpointer data)
{
    // Cancelled: `data` is no more.
    if (!g_subprocess_wait_finish(G_SUBPROCESS(process), result, nullptr))
        return;
    auto* const self = static_cast<ShellProcess*>(data);
    const bool exited = g_subprocess_get_if_exited(self->m_process.get());
    auto onEnd = std::move(self->m_onEnd);
    // The callback may destroy this object.
    onEnd({ .status = exited ? std::optional(g_subprocess_get_exit_status(self->m_process.get())) : std::nullopt,
        .output = self->m_output.takeRest(),
        .errors = self->m_errors.takeRest() });
}

}
