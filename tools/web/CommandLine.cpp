#include "web/CommandLine.h"

#include "service/NumberText.h"

#include <cstddef>
#include <limits>
#include <map>

namespace brevanta::web {

using service::fail;
using service::ServiceError;

// The options that take a value, each with what it was given.
using Values = std::map<std::string, std::optional<std::string>>;

static std::expected<std::optional<std::uint16_t>, ServiceError> portIn(const Values& values, const std::string& option)
{
    const auto& text = values.at(option);
    if (!text)
        return std::nullopt;
    const auto number = service::parseCount(*text, std::numeric_limits<std::uint16_t>::max());
    if (!number)
        return fail(option + " needs a port from 0 to 65535");
    return static_cast<std::uint16_t>(*number);
}

static std::expected<void, ServiceError> takePorts(CommandLine& result, const Values& values)
{
    const auto port = portIn(values, "--listen");
    const auto second = portIn(values, "--second-listen");
    const auto plain = portIn(values, "--http-listen");
    for (const auto* each : { &port, &second, &plain }) {
        if (!*each)
            return std::unexpected(each->error());
    }
    result.port = *port;
    result.secondPort = *second;
    result.plainPort = *plain;
    if (!result.port)
        return fail("--listen PORT is needed");
    return {};
}

static std::expected<void, ServiceError> takeCertificates(CommandLine& result, const Values& values)
{
    const auto& certificate = values.at("--certificate");
    const auto& key = values.at("--key");
    if (!certificate || !key)
        return fail("--certificate PEM and --key PEM are needed");
    result.certificate = { .certificate = *certificate, .key = *key };
    const auto& otherCertificate = values.at("--other-certificate");
    const auto& otherKey = values.at("--other-key");
    if (otherCertificate.has_value() != otherKey.has_value())
        return fail("--other-certificate and --other-key go together");
    if (otherCertificate)
        result.otherCertificate = CertificateFiles { .certificate = *otherCertificate, .key = *otherKey };
    return {};
}

std::expected<CommandLine, ServiceError> CommandLine::parse(const std::vector<std::string>& arguments)
{
    CommandLine result;
    Values values;
    for (const auto* option :
        { "--listen", "--second-listen", "--http-listen", "--certificate", "--key", "--other-certificate",
            "--other-key", "--control", "--service-control", "--pages", "--make-certificate", "--name" })
        values[option];
    const std::map<std::string, bool*> switches { { "--stdin", &result.takesStandardInput },
        { "--driver", &result.hasDriver }, { "--log-requests", &result.logsRequests } };

    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const auto& argument = arguments[index];
        if (argument == "--help" || argument == "-h" || argument == "help")
            return CommandLine { .purpose = Purpose::showHelp };
        if (argument == "--version")
            return CommandLine { .purpose = Purpose::showVersion };
        if (const auto found = switches.find(argument); found != switches.end()) {
            *found->second = true;
            continue;
        }
        const auto option = values.find(argument);
        if (option == values.end())
            return fail("unknown argument '" + argument + "'");
        if (index + 1 == arguments.size() || arguments[index + 1].empty())
            return fail(argument + " needs a value");
        option->second = arguments[++index];
    }

    if (const auto& directory = values["--make-certificate"]) {
        result.purpose = Purpose::makeCertificate;
        result.certificateDirectory = *directory;
        result.certificateStem = values["--name"].value_or(result.certificateStem);
        return result;
    }
    if (values["--name"])
        return fail("--name goes with --make-certificate");
    if (const auto taken = takePorts(result, values); !taken)
        return std::unexpected(taken.error());
    if (const auto taken = takeCertificates(result, values); !taken)
        return std::unexpected(taken.error());
    result.controlPath = values["--control"].value_or("");
    result.serviceControlPath = values["--service-control"].value_or("");
    result.pagesDirectory = values["--pages"].value_or("");
    return result;
}

std::string_view CommandLine::help()
{
    return R"(Usage: brevanta-web --listen PORT --certificate PEM --key PEM [options]
       brevanta-web --make-certificate DIRECTORY [--name STEM]

A stand-in for the service's web server: serves the demo application over HTTPS on loopback, and is driven by commands.

  --listen PORT             serve https on this port; 0 for any free one, as for the other ports
  --certificate PEM         its certificate
  --key PEM                 the certificate's key
  --other-certificate PEM   what the command `certificate other` serves instead
  --other-key PEM           its key
  --second-listen PORT      serve https on this port too, as another origin
  --http-listen PORT        serve plain http on this port too
  --control PATH            take commands on this Unix-domain socket, one answer line for each line
  --service-control PATH    serve at /day what the stand-in service that is driven there says of the day
  --stdin                   take commands on standard input, and answer them on standard output
  --pages DIRECTORY         serve the files of this directory below /pages/
  --driver                  the application takes the command `evaluate`
  --log-requests            print each request on standard output
  --make-certificate DIR    make a certificate for localhost and its key in this directory, and print their names
  --name STEM               name them STEM.pem and STEM-key.pem ("localhost")
  --help                    show this text
  --version                 show the version

Prints "listening on URL" for each port when it can be talked to. SIGTERM, SIGINT and the command `quit` end it.
The command `help` lists the commands.
Exit status: 0 ended as told, 1 cannot run, 2 wrong command line.
)";
}

}
