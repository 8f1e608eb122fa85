#pragma once

#include "base/LifeToken.h"
#include "platform/AlertPanel.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>

namespace brevanta {

class Executor;

// Shows the client's alerts one at a time, in the order in which they came. Main thread only.
class AppAlertPresenter {
public:
    AppAlertPresenter(AlertPanel& panel, Executor& mainLoop);

    // As AlertPanel::present; an alert of the same identifier that is shown or waits is not shown twice.
    void present(const Alert& alert, std::function<void(AlertResponse)> onEnd);

    // Takes the alert off the screen or out of the queue; it ends as withdrawn.
    void withdraw(const std::string& identifier);

private:
    struct Entry {
        Alert alert;
        std::function<void(AlertResponse)> onEnd;
    };

    [[nodiscard]] bool isKnown(const std::string& identifier) const;
    void showNext();
    void ended(AlertResponse response);
    void endLater(std::function<void(AlertResponse)> onEnd);

    AlertPanel& m_panel;
    Executor& m_mainLoop;
    std::optional<Entry> m_shown;
    std::deque<Entry> m_waiting;
    LifeToken m_life;
};

}
