#include "web/NavigationReporter.h"

#include "web/UrlError.h"

#include <utility>

namespace brevanta {

NavigationReporter::NavigationReporter(MainLoop& mainLoop, WebNavigationDelegate& delegate, Engine engine)
    : m_mainLoop(mainLoop)
    , m_delegate(delegate)
    , m_engine(std::move(engine))
    , m_calls(mainLoop)
{
}

void NavigationReporter::tell(const NavigationTracker::Notices& notices)
{
    if (!m_tracker.isUnderWay(m_timed)) {
        m_timed.reset();
        m_timer.reset();
    }
    for (const auto& notice : notices)
        m_calls.call([this, notice] { tellDelegate(notice); });
    const auto step = m_tracker.takeStep();
    if (step == NavigationTracker::Step::wait)
        return;
    const OrderedCalls::Hold hold(m_calls);
    step == NavigationTracker::Step::stop ? m_engine.stop() : m_engine.load();
}

WebNavigation NavigationReporter::requested(
    double timeoutSeconds, const WebNavigation& name, const std::optional<Url>& viewUrl)
{
    const OrderedCalls::Hold hold(m_calls);
    const auto superseded = m_tracker.requested(name, viewUrl);
    const auto navigation = m_tracker.requestedNavigation();
    m_timed = navigation;
    m_timeoutSeconds = timeoutSeconds;
    progressed();
    tell(superseded);
    return navigation;
}

void NavigationReporter::progressed()
{
    if (m_timed)
        m_timer = m_mainLoop.startTimer(m_timeoutSeconds, TimerRepeat::once, [this] { timedOut(); });
}

void NavigationReporter::end()
{
    m_calls.end();
    m_timed.reset();
    m_timer.reset();
}

void NavigationReporter::timedOut()
{
    const auto notices = m_tracker.givenUp(WebNavigation(m_timed), webError(UrlError::timedOut));
    {
        const OrderedCalls::Hold hold(m_calls);
        m_engine.stop();
    }
    tell(notices);
}

void NavigationReporter::tellDelegate(const NavigationNotice& notice)
{
    switch (notice.kind) {
    case NavigationNotice::Kind::started:
        return m_delegate.didStartProvisional(notice.navigation);
    case NavigationNotice::Kind::committed:
        return m_delegate.didCommit(notice.navigation);
    case NavigationNotice::Kind::finished:
        return m_delegate.didFinish(notice.navigation);
    case NavigationNotice::Kind::failed:
        return m_delegate.didFail(notice.navigation, notice.error);
    case NavigationNotice::Kind::processEnded:
        return m_delegate.contentProcessDidTerminate();
    }
}

}
