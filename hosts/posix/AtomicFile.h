#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>

namespace brevanta {

struct FileWriteError {
    enum class Step { create, write, flush, replace };

    Step step { Step::create };
    int code { 0 }; // An errno value.

    bool operator==(const FileWriteError&) const = default;
};

// In English, for the log: "could not write: No space left on device".
[[nodiscard]] std::string describe(const FileWriteError& error);

// Puts `contents` in the place of the file, or makes it: who reads `path` meets the old file or the whole new one, and
// after a crash of the machine too. The new file has exactly this mode, whatever the umask, before its first byte is
// written. A symbolic link at `path` is replaced itself. On an error the old file is as it was and nothing is left
// beside it. The result is fstat(2) of the new file in its place. Any thread; waits for the disk, and for no other
// writer: of several the last one wins.
//
// A process that is killed leaves at most one file, ".<name>.<number>.tmp", whose name no other writer has. Now and
// then a write of the same file removes those that are older than a minute; a writer that was stopped for so long
// fails.
[[nodiscard]] std::expected<struct stat, FileWriteError> writeFileAtomically(
    const std::filesystem::path& path, std::string_view contents, mode_t mode);

}
