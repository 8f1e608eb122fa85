#pragma once

#include <memory>

namespace brevanta {

struct BlockingStatus;

enum class RecoverAnswer { started, deferred };

// The web application in its window, as far as the poll loop and the menu need it. Main thread only.
class WebShell {
public:
    virtual ~WebShell() = default;

    // Asks the page to forward the user's token: at once, and if no page could hear that, as soon as the trusted page
    // is there, unless the request is withdrawn before.
    virtual void requestToken() = 0;
    virtual void withdrawTokenRequest() = 0;

    // Asks for a reload because the page's sign-in has gone stale; deferred while a load is under way.
    [[nodiscard]] virtual RecoverAnswer recover() = 0;

    // The user's Reload.
    virtual void reload() = 0;

    virtual void pushBlockingStatus(const std::shared_ptr<const BlockingStatus>& status) = 0;
};

}
