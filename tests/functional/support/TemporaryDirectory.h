#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace brevanta::functional {

// A new directory for this process only, removed with all that is in it. The path is short, since a socket's path is
// limited to about a hundred bytes.
class TemporaryDirectory {
public:
    TemporaryDirectory()
    {
        std::error_code error;
        auto pattern = (std::filesystem::temp_directory_path(error) / "brevanta-XXXXXX").string();
        if (!error && ::mkdtemp(pattern.data()))
            m_path = pattern;
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        if (isValid())
            std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] bool isValid() const { return !m_path.empty(); }
    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

}
