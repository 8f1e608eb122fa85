#pragma once

#include "service/ServiceError.h"
#include "web/GLibPointers.h"

#include <expected>
#include <filesystem>
#include <string>

namespace brevanta::web {

struct CertificateFiles {
    std::filesystem::path certificate;
    std::filesystem::path key;
};

// Makes a self-signed certificate for the name localhost, valid for a year, and its key, which only the owner may read:
// STEM.pem and STEM-key.pem in the directory, which has to be there. Files of these names are replaced. Runs
// openssl(1).
[[nodiscard]] std::expected<CertificateFiles, service::ServiceError> makeCertificate(
    const std::filesystem::path& directory, const std::string& stem);

[[nodiscard]] std::expected<GLibPointer<GTlsCertificate>, service::ServiceError> loadCertificate(
    const CertificateFiles&);

}
