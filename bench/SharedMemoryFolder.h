#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace brevanta::bench {

// A new folder in memory, removed with all that is in it.
class SharedMemoryFolder {
public:
    SharedMemoryFolder()
    {
        std::string pattern = "/dev/shm/brevanta-XXXXXX";
        if (!::mkdtemp(pattern.data()))
            std::abort();
        m_path = pattern;
    }
    ~SharedMemoryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    SharedMemoryFolder(const SharedMemoryFolder&) = delete;
    SharedMemoryFolder& operator=(const SharedMemoryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

}
