#include "mac/ApplicationLifecycleMac.h"

#include <utility>

namespace brevanta {

ApplicationLifecycleMac::ApplicationLifecycleMac(MainLoop& mainLoop)
    : m_mainLoop(mainLoop)
    , m_application(NSApplication.sharedApplication)
{
}

void ApplicationLifecycleMac::run(ApplicationObserver& observer)
{
    m_observer = &observer;
    m_delegate = [[BrevantaApplicationDelegate alloc] initWithObserver:observer];
    m_application.delegate = m_delegate;
    [m_application run];
}

void ApplicationLifecycleMac::setActivationPolicy(ActivationPolicy policy)
{
    [m_application setActivationPolicy:policy == ActivationPolicy::regular ? NSApplicationActivationPolicyRegular
                                                                           : NSApplicationActivationPolicyAccessory];
}

void ApplicationLifecycleMac::activate() { [m_application activateIgnoringOtherApps:YES]; }

void ApplicationLifecycleMac::terminate()
{
    if (!m_observer)
        return;
    if (m_observer->applicationShouldTerminate() == TerminationDecision::now)
        endSoon();
    else
        m_ownQuitWaits = true;
}

void ApplicationLifecycleMac::answerTermination(TerminationAnswer answer)
{
    const bool ownQuitWaits = std::exchange(m_ownQuitWaits, false);
    if (m_delegate.awaitsTerminationAnswer) {
        m_delegate.awaitsTerminationAnswer = NO;
        [m_application replyToApplicationShouldTerminate:answer == TerminationAnswer::proceed];
    } else if (ownQuitWaits && answer == TerminationAnswer::proceed) {
        endSoon();
    }
}

void ApplicationLifecycleMac::endSoon()
{
    m_delegate.terminationAgreed = YES;
    m_endTimer = m_mainLoop.startTimer(0, TimerRepeat::once, [this] { [m_application terminate:nil]; });
}

}
