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

// Which document is there, which navigations are under way, and which of them the client has asked for. A pure value:
// an event of the client or the engine in, the delegate's calls out.
//
// An engine that names its navigations (WKNavigation) gives the name with each event. WebKitGTK tells of loads without
// saying which (WebKitWebView's signals load-changed and load-failed): its names are null, and identity comes from the
// order. So that the order tells enough, such an engine is given one load at a time, and each with nothing else under
// way: it leaves two loads that have not started waiting for ever, and can lose one that crosses the end of another.
class NavigationTracker {
public:
    using Notices = std::vector<NavigationNotice>;

    // A load is asked for. With a name the engine has it already, and `viewUrl` is what its view then called its URL.
    // One that was asked for before and has not started fails as superseded.
    [[nodiscard]] Notices requested(const WebNavigation& name = nullptr, const std::optional<Url>& viewUrl = {});
    [[nodiscard]] const WebNavigation& requestedNavigation() const { return m_requested; }

    // What an engine without names is to be told now: to stop what it does, or to begin the load that was asked for.
    enum class Step { wait, stop, load };
    [[nodiscard]] Step takeStep();
    [[nodiscard]] bool awaitsStart() const { return m_handedOver != nullptr; }

    // An engine without names asks whether a load may begin. It does so before each start, therefore what starts
    // without having asked since the load of ours was handed over has been under way before.
    void asked() { m_hasAsked = true; }

    [[nodiscard]] Notices started(const WebNavigation& name = nullptr);
    // `url` is the document's own, or else what the view calls its URL; that can be the one of a load asked for
    // meanwhile.
    [[nodiscard]] Notices committed(const WebNavigation& name, const std::optional<Url>& url);
    [[nodiscard]] Notices finished(const WebNavigation& name = nullptr);
    [[nodiscard]] Notices failed(const WebNavigation& name, LoadStage stage, const WebError& error);
    [[nodiscard]] Notices processEnded();

    // The load that was handed over does not even start; the engine says nothing of that.
    [[nodiscard]] Notices refused(const WebError& error);

    // The navigation is given up for this error, and the engine told to stop; what it says of that is swallowed.
    [[nodiscard]] Notices givenUp(const WebNavigation& navigation, const WebError& error);

    // The response of the navigation that is to commit next comes from there.
    void responded(const std::optional<Url>& url) { m_responseUrl = url; }

    // When the engine now fails the navigation that has started, it is for this reason, whatever the engine calls it.
    void failsFor(const WebError& error) { m_reason = error; }

    // The view calls its URL so. A page may do so without leaving its document, within its origin (HTML,
    // history.pushState); anything else is the URL of a load under way.
    void viewUrlChanged(const std::optional<Url>& url);

    // The URL of the document that is there now. Nothing when there is none, or when nobody can tell which it is.
    [[nodiscard]] const std::optional<Url>& document() const { return m_document; }

    // Asked for or started, and neither finished nor failed.
    [[nodiscard]] bool isUnderWay(const WebNavigation& navigation) const;

private:
    [[nodiscard]] WebNavigation* find(const WebNavigation& name, LoadStage stage);
    [[nodiscard]] bool isAbandoned(const WebNavigation& navigation) const;
    void tell(Notices& notices, const NavigationNotice& notice) const;
    void end(Notices& notices, WebNavigation& slot, const WebError& error);
    void abandon(Notices& notices, const WebNavigation& navigation, const WebError& error);

    WebNavigation m_requested; // Asked for here, has not started.
    WebNavigation
        m_handedOver; // Given to the engine, has not started; another than the one above when that has to wait.
    WebNavigation m_provisional; // What the engine has started and not committed.
    WebNavigation m_arriving; // What the engine has committed and not finished.
    std::vector<WebNavigation> m_abandoned; // Told as failed, while the engine may not have ended them.
    bool m_hasAsked { false };
    bool m_isStopping { false }; // The engine has been told to stop, and is to say that it has finished.
    bool m_hasFailed { false }; // The engine says after each failure that it has finished.
    std::optional<WebError> m_reason;
    std::optional<Url> m_requestedUrl;
    std::optional<Url> m_responseUrl;
    std::optional<Url> m_document;
};

}
