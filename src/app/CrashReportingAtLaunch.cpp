#include "app/CrashReportingAtLaunch.h"

#include "app/AppPorts.h"
#include "app/BuildConfiguration.h"

namespace brevanta {

std::unique_ptr<CrashReporting> startCrashReporting(const AppPorts& ports, const BuildConfiguration& configuration)
{
    auto reporting = std::make_unique<CrashReporting>(
        CrashReporting::Dependencies { .reporter = ports.crashReporter, .log = ports.log, .parseUrl = ports.parseUrl });
    reporting->start({
        .endpoint = configuration.crashEndpoint,
        .environment = ports.crashEnvironment,
        .usualEnvironment = configuration.flavour == Flavour::dev ? "development" : "production",
        .release = configuration.bundleIdentifier + '@' + configuration.version,
    });
    return reporting;
}

}
