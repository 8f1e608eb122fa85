#pragma once

#include "app/LoginItemRegistration.h"
#include "app/StaleCopies.h"

namespace brevanta {

struct AppPorts;
struct BuildConfiguration;

// What browsers and the system are told of the application at each launch, put together: where the browsers find the
// native-messaging host, that other copies of the application do not count, and that it starts at login. Main thread
// only.
class LaunchRegistrations {
public:
    // Both outlive it.
    LaunchRegistrations(const AppPorts& ports, const BuildConfiguration& configuration);

    // Once.
    void begin();

private:
    const AppPorts& m_ports;
    const BuildConfiguration& m_configuration;
    StaleCopies m_staleCopies;
    LoginItemRegistration m_loginItem;
};

}
