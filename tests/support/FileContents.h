#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace brevanta {

// All bytes of the file; empty when it cannot be read.
[[nodiscard]] inline std::string contentsOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

}
