#pragma once

#include "platform/WebView.h"

#include <optional>
#include <vector>

namespace brevanta {

// One call of WebNavigationDelegate that is due.
struct NavigationNotice {
    enum class Kind { started, committed, finished, failed, processEnded };

    Kind kind { Kind::started };
    WebNavigation navigation; // Null for processEnded.
    WebError error; // For failed only.

    bool operator==(const NavigationNotice&) const = default;
};

// How far the load had come that the engine says has failed.
enum class LoadStage { provisional, committed };

// Gives the engine's load events their navigations. WebKitGTK tells of loads without saying which (WebKitWebView's
// signals load-changed and load-failed), so identity comes from the order: a load that was asked for here is what
// starts next, and whatever else starts is the page's own. A pure value: an event in, the delegate's calls out.
class NavigationTracker {
public:
    using Notices = std::vector<NavigationNotice>;

    // A load is asked for. `requestedNavigation` is its identity until it starts; one that was asked for before and has
    // not started fails as superseded.
    [[nodiscard]] Notices requested();
    [[nodiscard]] const WebNavigation& requestedNavigation() const { return m_requested; }

    // Whether the load that was asked for may be given to the engine now: two at once that have not started leave it
    // waiting for ever, so the second one waits here until the first has started.
    [[nodiscard]] bool mayHandOver() const { return m_requested && !m_handedOver; }
    void handedOver() { m_handedOver = m_requested; }
    [[nodiscard]] bool awaitsStart() const { return m_handedOver != nullptr; }

    [[nodiscard]] Notices started();
    [[nodiscard]] Notices committed();
    [[nodiscard]] Notices finished();
    [[nodiscard]] Notices failed(LoadStage stage, const WebError& error);
    [[nodiscard]] Notices processEnded();

    // The load that was handed over does not even start; the engine says nothing of that.
    [[nodiscard]] Notices refused(const WebError& error);

    // The navigation is given up for this error, and the engine told to stop; what it says of that is swallowed.
    [[nodiscard]] Notices givenUp(const WebNavigation& navigation, const WebError& error);

    // When the engine now fails the navigation that has started, it is for this reason, whatever the engine calls it.
    void failsFor(const WebError& error) { m_reason = error; }

    // Asked for or started, and neither finished nor failed.
    [[nodiscard]] bool isUnderWay(const WebNavigation& navigation) const;

    // Whether the engine may be on its way to another document.
    [[nodiscard]] bool isLeavingDocument() const { return m_requested || (m_current && !m_hasCommitted); }

private:
    [[nodiscard]] NavigationNotice endCurrent(const WebError& error);
    [[nodiscard]] NavigationNotice endRequested(const WebError& error);

    WebNavigation m_requested; // Asked for here, has not started.
    WebNavigation m_handedOver; // What the engine starts next; another than the one above when that has to wait.
    WebNavigation m_current; // Has started, has not ended.
    bool m_hasCommitted { false };
    bool m_awaitsStop { false }; // The engine has yet to say that what was given up has stopped.
    std::optional<WebError> m_reason;
};

}
