#pragma once

#include "app/LoginItemRegistration.h"
#include "app/StaleCopies.h"

namespace brevanta {

struct AppPorts;
struct BuildConfiguration;

// What the system is told of the application at each launch, put together: that it starts at login, and that other
// copies of it do not count. Main thread only.
class LaunchRegistrations {
public:
    LaunchRegistrations(const AppPorts& ports, const BuildConfiguration& configuration);

    // Once.
    void begin();

private:
    StaleCopies m_staleCopies;
    LoginItemRegistration m_loginItem;
};

}
