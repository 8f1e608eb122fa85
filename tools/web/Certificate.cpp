#include "web/Certificate.h"

#include <sys/stat.h>

namespace brevanta::web {

using service::fail;
using service::ServiceError;

// Everything that the certificate says, so that nothing depends on the machine's own configuration of openssl.
static constexpr const char* configuration = R"([req]
prompt = no
distinguished_name = name
x509_extensions = extensions
[name]
CN = localhost
[extensions]
subjectAltName = DNS:localhost
basicConstraints = critical, CA:FALSE
keyUsage = critical, digitalSignature
extendedKeyUsage = serverAuth
)";

std::expected<CertificateFiles, ServiceError> makeCertificate(
    const std::filesystem::path& directory, const std::string& stem)
{
    CertificateFiles files { .certificate = directory / (stem + ".pem"), .key = directory / (stem + "-key.pem") };
    // A key that is there already keeps its mode when it is written anew.
    std::error_code ignored;
    std::filesystem::remove(files.key, ignored);
    const auto previousMask = ::umask(S_IRWXG | S_IRWXO);
    ErrorSlot error;
    const GLibPointer<GSubprocess> process(g_subprocess_new(
        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDERR_PIPE), error.address(),
        "openssl", "req", "-x509", "-config", "/dev/stdin", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
        "-nodes", "-days", "365", "-keyout", files.key.c_str(), "-out", files.certificate.c_str(), nullptr));
    ::umask(previousMask);
    if (!process)
        return fail("openssl cannot be run: " + error.message());
    char* complaints = nullptr;
    const bool hasTalked
        = g_subprocess_communicate_utf8(process.get(), configuration, nullptr, nullptr, &complaints, error.address());
    const GLibPointer<char> complaintsOwner(complaints);
    if (!hasTalked)
        return fail("openssl: " + error.message());
    if (!g_subprocess_get_successful(process.get()))
        return fail("openssl: " + std::string(complaints ? complaints : "no reason given"));
    return files;
}

std::expected<GLibPointer<GTlsCertificate>, ServiceError> loadCertificate(const CertificateFiles& files)
{
    ErrorSlot error;
    GLibPointer<GTlsCertificate> certificate(
        g_tls_certificate_new_from_files(files.certificate.c_str(), files.key.c_str(), error.address()));
    if (!certificate)
        return fail(files.certificate.string() + ", " + files.key.string() + ": " + error.message());
    return certificate;
}

}
