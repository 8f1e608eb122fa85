#pragma once

#include "service/ServiceError.h"

#include <expected>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace brevanta::service {

// What a removal leaves in the files of an installation, and how it takes that installation away. Nothing here waits.
class RemovalOnDisk {
public:
    enum class Progress { waiting, done };

    // An existing directory that stands for "/"; "/" itself is refused, since what is there belongs to the machine.
    [[nodiscard]] static std::expected<RemovalOnDisk, ServiceError> open(const std::string& root);

    // The file "removal-requested" of the support folder, with the account of the request. Makes the folder if needed.
    [[nodiscard]] std::expected<void, ServiceError> noteRequest(const std::optional<std::string>& account) const;
    [[nodiscard]] std::expected<void, ServiceError> forgetRequest() const;
    [[nodiscard]] bool isRequested() const;
    // Nothing as well when the file was made by somebody else and holds no account.
    [[nodiscard]] std::optional<std::string> requestedAccount() const;

    // A run before this one was killed while it took the installation away.
    [[nodiscard]] bool hasBegun() const;

    // Takes the installation away, or what is left of it. `waiting`: somebody else holds one of the two locks, and
    // nothing has changed. After an error the removal marker may be there. Either way the call may be made again.
    [[nodiscard]] std::expected<Progress, ServiceError> erase() const;

private:
    explicit RemovalOnDisk(const std::filesystem::path& root);

    [[nodiscard]] std::expected<Progress, ServiceError> eraseUnderLocks() const;
    // What launchd's file holds; nothing where launchd has never heard of a service.
    [[nodiscard]] std::expected<std::optional<nlohmann::json>, ServiceError> readLaunchd() const;
    [[nodiscard]] std::expected<void, ServiceError> makeMarker() const;

    std::filesystem::path m_supportFolder;
    std::filesystem::path m_request;
    std::filesystem::path m_marker;
    std::filesystem::path m_propertyList;
    std::filesystem::path m_program;
    std::filesystem::path m_removalLockFile;
    std::filesystem::path m_launchdFile;
};

}
