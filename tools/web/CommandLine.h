#pragma once

#include "service/ServiceError.h"
#include "web/Certificate.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta::web {

struct CommandLine {
    enum class Purpose { serve, makeCertificate, showHelp, showVersion };

    Purpose purpose = Purpose::serve;
    std::optional<std::uint16_t> port {};
    std::optional<std::uint16_t> secondPort {};
    std::optional<std::uint16_t> plainPort {};
    CertificateFiles certificate {};
    std::optional<CertificateFiles> otherCertificate {};
    std::string controlPath {}; // Empty for none, as the next three.
    std::string serviceControlPath {};
    std::string pagesDirectory {};
    std::string certificateDirectory {};
    std::string certificateStem = "localhost";
    bool takesStandardInput = false;
    bool hasDriver = false;
    bool logsRequests = false;

    [[nodiscard]] static std::expected<CommandLine, service::ServiceError> parse(
        const std::vector<std::string>& arguments);
    [[nodiscard]] static std::string_view help();
};

}
