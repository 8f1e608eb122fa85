#pragma once

#include "platform/AlertPanel.h"
#include "platform/MainLoop.h"

#import <AppKit/AppKit.h>

#include <deque>

namespace brevanta {

// Application-modal alerts (documentation page NSAlert). One modal session runs at a time: an alert that is presented
// while another is open is shown when that one has ended, so that each can be withdrawn whatever the order.
// Lives as long as the application runs, and so does the main loop.
class AlertPanelMac final : public AlertPanel {
public:
    explicit AlertPanelMac(MainLoop& mainLoop);

    void present(const Alert& alert, std::function<void(AlertResponse)> onEnd) override;
    void withdraw(const std::string& identifier) override;

private:
    struct Request {
        Alert alert;
        std::function<void(AlertResponse)> onEnd;
    };

    void showNextSoon();
    void runNext();
    void abortShown();
    void postWithdrawn(std::function<void(AlertResponse)> onEnd);

    MainLoop& m_mainLoop;
    std::deque<Request> m_waiting;
    std::string m_shownIdentifier;
    NSAlert* m_shown { nil };
    std::unique_ptr<Timer> m_showTimer;
    std::unique_ptr<Timer> m_abortTimer;
};

}
