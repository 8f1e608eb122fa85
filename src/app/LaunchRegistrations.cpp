#include "app/LaunchRegistrations.h"

#include "app/AppPorts.h"
#include "app/BuildConfiguration.h"
#include "nativehost/NativeMessagingRegistration.h"
#include "platform/ServiceManager.h"

namespace brevanta {

namespace {

NativeMessagingFacts nativeMessagingFacts(const AppPorts& ports, const BuildConfiguration& configuration)
{
    using Facts = NativeMessagingFacts;
    return { .place = AppLocationPolicy::classify(ports.location()) ? Facts::Place::ineligible : Facts::Place::eligible,
        .service = ports.services.isProgramInstalled() ? Facts::Service::installed : Facts::Service::absent,
        .mode
        = configuration.flavour == Flavour::dev ? NativeMessagingPolicy::Mode::dev : NativeMessagingPolicy::Mode::prod,
        .root = configuration.root,
        .home = ports.home,
        .bundle = ports.bundle,
        .confinedBrowsers = ports.confinedBrowsers };
}

}

LaunchRegistrations::LaunchRegistrations(const AppPorts& ports, const BuildConfiguration& configuration)
    : m_ports(ports)
    , m_configuration(configuration)
    , m_staleCopies({ .programs = ports.programs,
          .clock = ports.clock,
          .root = configuration.root,
          .bundle = ports.bundle,
          .bundleIdentifier = configuration.bundleIdentifier })
    , m_loginItem(ports.loginItem, ports.mainLoop, ports.log)
{
}

void LaunchRegistrations::begin()
{
    registerNativeMessagingHost(
        m_ports.nativeMessagingQueue, m_ports.files, m_ports.log, nativeMessagingFacts(m_ports, m_configuration));
    m_staleCopies.begin();
    m_loginItem.begin();
}

}
