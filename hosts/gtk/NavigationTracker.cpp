#include "gtk/NavigationTracker.h"

#include "gtk/WebErrorMapping.h"

#include <utility>

namespace brevanta {

namespace {

using Kind = NavigationNotice::Kind;

WebNavigation newNavigation() { return std::make_shared<const char>('n'); }

}

NavigationTracker::Notices NavigationTracker::requested()
{
    Notices notices;
    if (m_requested)
        notices.push_back(endRequested(cancelledError()));
    m_requested = newNavigation();
    return notices;
}

NavigationTracker::Notices NavigationTracker::started()
{
    Notices notices;
    if (m_current)
        notices.push_back(endCurrent(cancelledError()));
    m_hasCommitted = false;
    m_reason.reset();
    // What was superseded before it started has failed already, and the engine goes on to cancel it.
    m_awaitsStop = m_handedOver && m_handedOver != m_requested;
    if (m_awaitsStop) {
        m_handedOver.reset();
        return notices;
    }
    m_current = m_handedOver ? std::exchange(m_requested, nullptr) : newNavigation();
    m_handedOver.reset();
    notices.push_back({ Kind::started, m_current, {} });
    return notices;
}

NavigationTracker::Notices NavigationTracker::committed()
{
    if (!m_current || m_hasCommitted)
        return {};
    m_hasCommitted = true;
    return { { Kind::committed, m_current, {} } };
}

NavigationTracker::Notices NavigationTracker::finished()
{
    // The engine says this after each failure too, when there is nothing left to finish.
    m_awaitsStop = false;
    if (!m_current)
        return {};
    if (!m_hasCommitted)
        return { endCurrent(cancelledError()) };
    return { { Kind::finished, std::exchange(m_current, nullptr), {} } };
}

NavigationTracker::Notices NavigationTracker::failed(LoadStage stage, const WebError& error)
{
    if (std::exchange(m_awaitsStop, false))
        return {};
    const bool isCurrent = m_current && m_hasCommitted == (stage == LoadStage::committed);
    if (isCurrent)
        return { endCurrent(m_reason.value_or(error)) };
    // A load that the rules refuse fails without having started. What is cancelled is never the one that is yet to
    // start: the engine cancels the one before it.
    if (stage == LoadStage::provisional && error != cancelledError())
        return refused(error);
    return {};
}

NavigationTracker::Notices NavigationTracker::refused(const WebError& error)
{
    const auto navigation = std::exchange(m_handedOver, nullptr);
    if (!navigation || navigation != m_requested)
        return {};
    return { endRequested(error) };
}

NavigationTracker::Notices NavigationTracker::processEnded()
{
    *this = {};
    return { { Kind::processEnded, nullptr, {} } };
}

NavigationTracker::Notices NavigationTracker::givenUp(const WebNavigation& navigation, const WebError& error)
{
    if (!isUnderWay(navigation))
        return {};
    if (navigation == m_requested) {
        m_handedOver.reset();
        return { endRequested(error) };
    }
    m_awaitsStop = true;
    return { endCurrent(error) };
}

bool NavigationTracker::isUnderWay(const WebNavigation& navigation) const
{
    return navigation && (navigation == m_requested || navigation == m_current);
}

NavigationNotice NavigationTracker::endCurrent(const WebError& error)
{
    m_reason.reset();
    return { Kind::failed, std::exchange(m_current, nullptr), error };
}

NavigationNotice NavigationTracker::endRequested(const WebError& error)
{
    return { Kind::failed, std::exchange(m_requested, nullptr), error };
}

}
