#include "mac/LoginItemMac.h"

#include "mac/TextMac.h"

#import <ServiceManagement/ServiceManagement.h>

#include <utility>

namespace brevanta {

namespace {

LoginItemStatus statusFrom(SMAppServiceStatus status)
{
    switch (status) {
    case SMAppServiceStatusNotRegistered:
        return LoginItemStatus::notRegistered;
    case SMAppServiceStatusEnabled:
        return LoginItemStatus::enabled;
    case SMAppServiceStatusRequiresApproval:
        return LoginItemStatus::requiresApproval;
    case SMAppServiceStatusNotFound:
        break;
    }
    return LoginItemStatus::notFound;
}

std::expected<void, LoginItemError> registerMainApplication()
{
    NSError* error = nil;
    if ([SMAppService.mainAppService registerAndReturnError:&error])
        return {};
    return std::unexpected(LoginItemError { utf8FromString(error.localizedDescription) });
}

}

LoginItemMac::LoginItemMac(MainLoop& mainLoop)
    : m_queue(dispatch_queue_create("com.brevanta.mac.login-item", DISPATCH_QUEUE_SERIAL))
    , m_statuses(mainLoop)
    , m_registrations(mainLoop)
{
}

void LoginItemMac::readStatus(std::function<void(LoginItemStatus)> onEnd)
{
    const auto finish = m_statuses.expect(std::move(onEnd));
    dispatch_async(m_queue, ^{ finish(statusFrom(SMAppService.mainAppService.status)); });
}

void LoginItemMac::registerApplication(std::function<void(std::expected<void, LoginItemError>)> onEnd)
{
    const auto finish = m_registrations.expect(std::move(onEnd));
    dispatch_async(m_queue, ^{ finish(registerMainApplication()); });
}

}
