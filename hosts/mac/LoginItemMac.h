#pragma once

#include "mac/CompletionTable.h"
#include "platform/LoginItem.h"

#import <Foundation/Foundation.h>
#import <dispatch/dispatch.h>

NS_ASSUME_NONNULL_BEGIN

namespace brevanta {

// The login item of the application itself (documentation page SMAppService). The system is asked off the main thread,
// one question at a time.
class LoginItemMac final : public LoginItem {
public:
    explicit LoginItemMac(MainLoop& mainLoop);

    void readStatus(std::function<void(LoginItemStatus)> onEnd) override;
    void registerApplication(std::function<void(std::expected<void, LoginItemError>)> onEnd) override;

private:
    dispatch_queue_t m_queue;
    CompletionTable<LoginItemStatus> m_statuses;
    CompletionTable<std::expected<void, LoginItemError>> m_registrations;
};

}

NS_ASSUME_NONNULL_END
