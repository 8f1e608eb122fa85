#pragma once

#include "service/Command.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

namespace brevanta::service {

inline ServiceIdentity testIdentity(std::uint64_t launchOrder = 1)
{
    return {
        .bootId = "boot-1",
        .launch = "launch-1",
        .launchOrder = launchOrder,
        .leaseBootSession = "session-1",
        .epochAtStart = 1'000'000,
        .uptimeAtStartNs = 5'000'000'000,
        .version = "1.0.0",
    };
}

inline std::string runCommand(Service& service, const std::string& line)
{
    const auto command = parseCommand(line);
    if (!command)
        return "error: " + command.error().message;
    const auto result = (*command)(service);
    if (!result)
        return "error: " + result.error().message;
    return *result ? describeResult(**result) : "waiting";
}

inline std::string replyText(Service& service, const std::string& request) { return service.answer(request).bytes; }

inline nlohmann::json replyTo(Service& service, const std::string& request)
{
    return nlohmann::json::parse(replyText(service, request), nullptr, false);
}

inline nlohmann::json statusOf(Service& service) { return replyTo(service, R"({"type":"get_status"})"); }

// A directory of its own for each test, short enough for a socket path.
class TemporaryDirectory {
public:
    TemporaryDirectory()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "service-XXXXXX").string();
        if (const auto* made = ::mkdtemp(pattern.data()))
            m_path = made;
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        if (!m_path.empty())
            std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] std::string file(const std::string& name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

}
