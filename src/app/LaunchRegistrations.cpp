#include "app/LaunchRegistrations.h"

#include "app/AppDelegate.h"

namespace brevanta {

LaunchRegistrations::LaunchRegistrations(const AppPorts& ports, const BuildConfiguration& configuration)
    : m_staleCopies({ .programs = ports.programs,
          .clock = ports.clock,
          .root = configuration.root,
          .bundle = ports.bundle,
          .bundleIdentifier = configuration.bundleIdentifier })
    , m_loginItem(ports.loginItem, ports.mainLoop, ports.log)
{
}

void LaunchRegistrations::begin()
{
    m_staleCopies.begin();
    m_loginItem.begin();
}

}
