#include "service/FileReplacement.h"

#include <cstdio>
#include <fstream>

namespace brevanta::service {

std::expected<void, ServiceError> replaceFile(const std::string& path, std::string_view text)
{
    const auto temporaryPath = path + ".new";
    {
        std::ofstream file(temporaryPath, std::ios::binary | std::ios::trunc);
        file << text;
        file.flush();
        if (!file)
            return fail(temporaryPath + ": cannot be written");
    }
    if (std::rename(temporaryPath.c_str(), path.c_str()))
        return fail(path + ": cannot be replaced");
    return {};
}

}
