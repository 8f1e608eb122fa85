#pragma once

#include "web/WebShell.h"

#include <vector>

namespace brevanta {

class FakeWebShell final : public WebShell {
public:
    [[nodiscard]] ScriptDelivery evaluate(const std::string& script) override
    {
        scripts.push_back(script);
        return delivery;
    }
    [[nodiscard]] RecoverAnswer recover() override
    {
        ++recoveries;
        return recoverAnswer;
    }
    void reload() override { ++reloads; }
    void pushBlockingStatus(const std::shared_ptr<const BlockingStatus>& status) override { pushed.push_back(status); }

    std::vector<std::string> scripts;
    std::vector<std::shared_ptr<const BlockingStatus>> pushed;
    int recoveries { 0 };
    int reloads { 0 };
    ScriptDelivery delivery { ScriptDelivery::handedOver };
    RecoverAnswer recoverAnswer { RecoverAnswer::started };
};

}
