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

    // As AlertPanel::present; an alert of the same identifier that is shown or waits is not shown twice. One that has
    // been withdrawn is neither, although the panel may take a moment to let go of it.
    void present(const Alert& alert, std::function<void(AlertResponse)> onEnd);

    // Takes the alert off the screen or out of the queue; it ends as withdrawn, whatever the user does meanwhile.
    void withdraw(const std::string& identifier);

private:
    struct Entry {
        Alert alert;
        std::function<void(AlertResponse)> onEnd; // Null once it has been withdrawn.
    };

    [[nodiscard]] bool isShown(const std::string& identifier) const;
    [[nodiscard]] bool isKnown(const std::string& identifier) const;
    void showNext();
    void ended(AlertResponse response);
    void endLater(std::function<void(AlertResponse)> onEnd);

    AlertPanel& m_panel;
    Executor& m_mainLoop;
    std::optional<Entry> m_shown; // Until the panel has let go of it.
    std::deque<Entry> m_waiting;
    LifeToken m_life;
};

}
