#pragma once

#include "web/WebShell.h"

#include <vector>

namespace brevanta {

class FakeWebShell final : public WebShell {
public:
    void requestToken() override { ++tokenRequests; }
    void withdrawTokenRequest() override { ++withdrawals; }
    [[nodiscard]] RecoverAnswer recover() override
    {
        ++recoveries;
        return recoverAnswer;
    }
    void reload() override { ++reloads; }
    void pushBlockingStatus(const std::shared_ptr<const BlockingStatus>& status) override { pushed.push_back(status); }

    std::vector<std::shared_ptr<const BlockingStatus>> pushed;
    int tokenRequests { 0 };
    int withdrawals { 0 };
    int recoveries { 0 };
    int reloads { 0 };
    RecoverAnswer recoverAnswer { RecoverAnswer::started };
};

}
