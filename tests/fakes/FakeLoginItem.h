#pragma once

#include "fakes/FakeAnswers.h"
#include "platform/LoginItem.h"

namespace brevanta {

// Each question is answered as the fields say, posted to the main loop, or once the test has it answered.
class FakeLoginItem final : public LoginItem {
public:
    explicit FakeLoginItem(Executor& mainLoop)
        : statuses(mainLoop)
        , registrations(mainLoop)
    {
    }

    void readStatus(std::function<void(LoginItemStatus)> onEnd) override { statuses.ask(std::move(onEnd)); }
    void registerApplication(std::function<void(std::expected<void, LoginItemError>)> onEnd) override
    {
        registrations.ask(std::move(onEnd));
    }

    FakeAnswers<LoginItemStatus> statuses;
    FakeAnswers<std::expected<void, LoginItemError>> registrations;
};

}
