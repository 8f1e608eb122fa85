#pragma once

#include <memory>
#include <string>

namespace brevanta {

struct BlockingStatus;

enum class ScriptDelivery { handedOver, refused };
enum class RecoverAnswer { started, deferred };

// The web application in its window, as far as the poll loop and the menu need it. Main thread only.
class WebShell {
public:
    virtual ~WebShell() = default;

    // Evaluates the script in the page without waiting for a result; refused while there is no trusted page.
    [[nodiscard]] virtual ScriptDelivery evaluate(const std::string& script) = 0;

    // Asks for a reload because the page's sign-in has gone stale; deferred while a load is under way.
    [[nodiscard]] virtual RecoverAnswer recover() = 0;

    // The user's Reload.
    virtual void reload() = 0;

    virtual void pushBlockingStatus(const std::shared_ptr<const BlockingStatus>& status) = 0;
};

}
