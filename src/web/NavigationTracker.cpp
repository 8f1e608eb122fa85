#include "web/NavigationTracker.h"

#include "web/UrlError.h"

#include <algorithm>
#include <utility>

namespace brevanta {

namespace {

using Kind = NavigationNotice::Kind;

WebNavigation newNavigation() { return std::make_shared<const char>('n'); }

bool hasSameOrigin(const Url& one, const Url& other)
{
    return one.scheme == other.scheme && one.host == other.host && one.port == other.port;
}

}

NavigationTracker::Notices NavigationTracker::requested(const WebNavigation& name, const std::optional<Url>& viewUrl)
{
    Notices notices;
    if (m_requested)
        abandon(notices, m_requested, cancelledError());
    m_requested = name ? name : newNavigation();
    m_requestedUrl = viewUrl;
    if (name)
        m_handedOver = name;
    return notices;
}

NavigationTracker::Step NavigationTracker::takeStep()
{
    if (!m_requested || m_handedOver || m_isStopping || m_hasFailed)
        return Step::wait;
    if (m_provisional || m_arriving) {
        m_isStopping = true;
        return Step::stop;
    }
    m_handedOver = m_requested;
    m_hasAsked = false;
    return Step::load;
}

NavigationTracker::Notices NavigationTracker::started(const WebNavigation& name)
{
    Notices notices;
    end(notices, m_provisional, cancelledError());
    m_isStopping = false;
    m_hasFailed = false;
    m_reason.reset();
    m_responseUrl.reset();
    const bool isHandedOver = m_handedOver && (name ? name == m_handedOver : m_hasAsked);
    if (isHandedOver)
        m_provisional = std::exchange(m_handedOver, nullptr);
    else
        m_provisional = name ? name : newNavigation();
    if (m_provisional == m_requested) {
        m_requested.reset();
        m_abandoned.clear(); // Asked for before this one, so they do not start any more.
    }
    tell(notices, { Kind::started, m_provisional, {} });
    return notices;
}

NavigationTracker::Notices NavigationTracker::committed(const WebNavigation& name, const std::optional<Url>& url)
{
    Notices notices;
    if (!m_provisional || (name && name != m_provisional))
        notices = started(name); // No document comes unnoticed.
    end(notices, m_arriving, cancelledError());
    m_arriving = std::exchange(m_provisional, nullptr);
    const bool isOfRequest = m_requested && url && url == m_requestedUrl;
    m_document = isOfRequest ? m_responseUrl : url;
    m_reason.reset();
    tell(notices, { Kind::committed, m_arriving, {} });
    return notices;
}

NavigationTracker::Notices NavigationTracker::finished(const WebNavigation& name)
{
    Notices notices;
    m_isStopping = false;
    if (!name && std::exchange(m_hasFailed, false))
        return notices;
    if (auto* const slot = find(name, LoadStage::committed)) {
        tell(notices, { Kind::finished, *slot, {} });
        std::erase(m_abandoned, std::exchange(*slot, nullptr));
    } else if (!name)
        end(notices, m_provisional, cancelledError());
    return notices;
}

NavigationTracker::Notices NavigationTracker::failed(const WebNavigation& name, LoadStage stage, const WebError& error)
{
    Notices notices;
    if (!name)
        m_hasFailed = true;
    if (auto* const slot = find(name, stage)) {
        if (*slot == m_handedOver)
            m_handedOver.reset();
        end(notices, *slot, slot == &m_provisional ? m_reason.value_or(error) : error);
    } else if (!name && stage == LoadStage::provisional && error != cancelledError()) {
        // A load that the rules refuse fails without having started. What is cancelled is never the one that is yet to
        // start: the engine cancels the one before it.
        return refused(error);
    }
    return notices;
}

NavigationTracker::Notices NavigationTracker::processEnded()
{
    auto abandoned = std::move(m_abandoned);
    for (const auto& navigation : { m_requested, m_provisional, m_arriving }) {
        if (navigation)
            abandoned.push_back(navigation);
    }
    *this = {};
    m_abandoned = std::move(abandoned);
    return { { Kind::processEnded, nullptr, {} } };
}

NavigationTracker::Notices NavigationTracker::refused(const WebError& error)
{
    Notices notices;
    if (m_handedOver && std::exchange(m_handedOver, nullptr) == m_requested)
        end(notices, m_requested, error);
    return notices;
}

NavigationTracker::Notices NavigationTracker::givenUp(const WebNavigation& navigation, const WebError& error)
{
    Notices notices;
    if (!isUnderWay(navigation))
        return notices;
    abandon(notices, navigation, error);
    if (navigation != m_requested) {
        m_isStopping = true;
        return notices;
    }
    // The engine has not begun the load, or not ended what it was to stop for it: neither is waited for any longer.
    m_requested.reset();
    m_handedOver.reset();
    m_isStopping = false;
    m_hasFailed = false;
    end(notices, m_provisional, cancelledError());
    end(notices, m_arriving, cancelledError());
    return notices;
}

void NavigationTracker::viewUrlChanged(const std::optional<Url>& url)
{
    if (url && m_document && !m_requested && !m_provisional && hasSameOrigin(*url, *m_document))
        m_document = url;
}

bool NavigationTracker::isUnderWay(const WebNavigation& navigation) const
{
    return navigation && (navigation == m_requested || navigation == m_provisional || navigation == m_arriving)
        && !isAbandoned(navigation);
}

// Without a name the stage tells which it is. Null when nothing of that is under way.
WebNavigation* NavigationTracker::find(const WebNavigation& name, LoadStage stage)
{
    if (!name) {
        auto& slot = stage == LoadStage::provisional ? m_provisional : m_arriving;
        return slot ? &slot : nullptr;
    }
    for (auto* const slot : { &m_provisional, &m_arriving, &m_requested }) {
        if (*slot == name)
            return slot;
    }
    return nullptr;
}

bool NavigationTracker::isAbandoned(const WebNavigation& navigation) const
{
    return std::ranges::find(m_abandoned, navigation) != m_abandoned.end();
}

void NavigationTracker::tell(Notices& notices, const NavigationNotice& notice) const
{
    if (!isAbandoned(notice.navigation))
        notices.push_back(notice);
}

void NavigationTracker::end(Notices& notices, WebNavigation& slot, const WebError& error)
{
    if (!slot)
        return;
    tell(notices, { Kind::failed, slot, error });
    std::erase(m_abandoned, std::exchange(slot, nullptr));
}

void NavigationTracker::abandon(Notices& notices, const WebNavigation& navigation, const WebError& error)
{
    tell(notices, { Kind::failed, navigation, error });
    m_abandoned.push_back(navigation);
}

}
