#pragma once

#include "platform/ApplicationLifecycle.h"
#include "platform/MainLoop.h"

#import "mac/ApplicationDelegateMac.h"

namespace brevanta {

// The shared application object (documentation page NSApplication), which comes into being with this one. A quit of the
// client's own does not enter NSApplication before the observer has agreed: terminate: returns only when the quit was
// cancelled, and to wait for an answer it runs the loop inside the caller, where the caller's timer would stand still.
class ApplicationLifecycleMac final : public ApplicationLifecycle {
public:
    explicit ApplicationLifecycleMac(MainLoop& mainLoop);

    // Runs the application; the process ends inside this call. Called once; the observer is kept until then.
    void run(ApplicationObserver& observer);

    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    void terminate() override;
    void answerTermination(TerminationAnswer answer) override;

private:
    void endSoon();

    MainLoop& m_mainLoop;
    NSApplication* m_application;
    ApplicationObserver* m_observer { nullptr };
    BrevantaApplicationDelegate* m_delegate { nil }; // NSApplication holds its delegate weakly.
    bool m_ownQuitWaits { false };
    std::unique_ptr<Timer> m_endTimer;
};

}
