#pragma once

#include "gtk/GObjectPtr.h"

#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace brevanta {

struct ShellSurroundings {
    std::filesystem::path folder; // That the shell begins in.
    std::string searchPath; // Its PATH.
    std::filesystem::path root; // Its STANDIN_ROOT. Everything else is as in this process.
};

struct ShellEnd {
    std::optional<int> status; // Nothing when a signal has ended it.
    std::string output; // What it wrote to standard output, up to 64 KiB; what came then was dropped.
    std::string errors; // The same of standard error.
};

// A shell that runs a text, sh(1), without input, and what it writes. GLib's main context serves it; main thread only.
class ShellProcess {
public:
    // `onEnd` is called once, from the main loop, when the shell itself has ended: a process that it leaves behind
    // holds nothing up. The error is a line in English. The text is without NUL.
    [[nodiscard]] static std::expected<std::unique_ptr<ShellProcess>, std::string> start(
        const std::string& script, const ShellSurroundings& surroundings, std::function<void(ShellEnd)> onEnd);

    // The shell goes on; nothing is told of it any more.
    ~ShellProcess();
    ShellProcess(const ShellProcess&) = delete;
    ShellProcess& operator=(const ShellProcess&) = delete;

private:
    // One of the two pipes. Reads while the process runs, since a full pipe would hold it up.
    class Reader {
    public:
        explicit Reader(GInputStream* stream);
        ~Reader();
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;

        [[nodiscard]] std::string takeRest();

    private:
        enum class Piece { read, notYet, none };

        static gboolean isReadable(GObject* stream, gpointer reader);
        Piece readPiece();

        GObjectPtr<GPollableInputStream> m_stream;
        GSource* m_source { nullptr };
        std::string m_text;
    };

    ShellProcess(GObjectPtr<GSubprocess> process, std::function<void(ShellEnd)> onEnd);
    static void ended(GObject* process, GAsyncResult* result, gpointer data);

    GObjectPtr<GSubprocess> m_process;
    GObjectPtr<GCancellable> m_cancellable { g_cancellable_new() };
    Reader m_output;
    Reader m_errors;
    std::function<void(ShellEnd)> m_onEnd;
};

}
