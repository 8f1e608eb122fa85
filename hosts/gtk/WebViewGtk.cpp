#include "gtk/WebViewGtk.h"

#include "gtk/UrlGtk.h"
#include "gtk/WebErrorMapping.h"
#include "gtk/WebPermissionsGtk.h"
#include "platform/SystemLog.h"

#include <utility>

namespace brevanta {

namespace {

constexpr double reloadTimeoutSeconds = 60;
constexpr int frameLoadInterrupted = WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE;

bool hasSameOrigin(const Url& one, const Url& other)
{
    return one.scheme == other.scheme && one.host == other.host && one.port == other.port;
}

NetworkFacts networkFacts(const std::string& failedUrl)
{
    const auto url = parseUrl(failedUrl);
    return { .isNetworkAvailable = g_network_monitor_get_network_available(g_network_monitor_get_default()) != FALSE,
        .isLoopback = url && isLoopbackHost(url->host) };
}

NavigationAction actionOf(WebKitNavigationPolicyDecision* decision)
{
    auto* const action = webkit_navigation_policy_decision_get_navigation_action(decision);
    const char* const uri = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
    // The redirection of a link is told as a click once more.
    const bool isClick = webkit_navigation_action_get_navigation_type(action) == WEBKIT_NAVIGATION_TYPE_LINK_CLICKED
        && !webkit_navigation_action_is_redirect(action);
    return { .url = uri ? parseUrl(uri) : std::nullopt,
        .type = isClick ? NavigationType::linkActivated : NavigationType::other };
}

}

WebViewGtk::WebViewGtk(MainLoop& mainLoop, SystemLog& log, WebEngineOptions options)
    : m_mainLoop(mainLoop)
    , m_log(log)
    , m_options(std::move(options))
    , m_calls(mainLoop)
{
    prepareWebEngine();
    m_container.show();
}

WebViewGtk::~WebViewGtk() { detach(); }

void WebViewGtk::start(const WebViewConfiguration& configuration)
{
    const OrderedCalls::Hold hold(m_calls);
    m_navigationDelegate = &configuration.navigationDelegate;
    m_uiDelegate = &configuration.uiDelegate;
    m_bridge.emplace(configuration);
    if (m_options.certificate) {
        GError* error = nullptr;
        m_certificate.reset(g_tls_certificate_new_from_file(m_options.certificate->file.c_str(), &error));
        if (const GLibPtr<GError> owned(error); owned)
            m_log.log("[WebView] the extra certificate cannot be read: " + std::string(owned->message));
    }
    m_engine = newWebEngine(m_options, configuration);
    connectSignals();
    auto* const view = GTK_WIDGET(m_engine.view.get());
    gtk_box_pack_start(m_container.gobj(), view, TRUE, TRUE, 0);
    gtk_widget_show(view);
}

WebNavigation WebViewGtk::load(const std::string& url, double timeoutSeconds)
{
    const auto parts = parseUrl(url);
    // A script is run in the document that is there, and the engine tells of no load.
    if (!m_engine.view || !parts || parts->scheme == "javascript")
        return nullptr;
    return begin(timeoutSeconds, [this, url] { webkit_web_view_load_uri(m_engine.view.get(), url.c_str()); });
}

WebNavigation WebViewGtk::reloadFromOrigin()
{
    if (!m_engine.view || !m_committedUrl)
        return nullptr;
    return begin(reloadTimeoutSeconds, [this, url = m_committedUrl->text] {
        auto* const view = m_engine.view.get();
        if (!webkit_web_view_is_loading(view))
            return webkit_web_view_reload_bypass_cache(view);
        // The engine swallows a reload during a load that has not committed.
        webkit_web_view_stop_loading(view);
        loadPastCaches(url);
    });
}

void WebViewGtk::evaluate(const std::string& script)
{
    if (!m_engine.view)
        return;
    const OrderedCalls::Hold hold(m_calls);
    // The engine takes a text that is not UTF-8 for an empty one. It is not looked at here: it may have megabytes.
    webkit_web_view_evaluate_javascript(m_engine.view.get(), script.data(), static_cast<gssize>(script.size()), nullptr,
        nullptr, nullptr, nullptr, nullptr);
}

void WebViewGtk::setInspectable(Inspectable inspectable)
{
    if (m_engine.view)
        webkit_settings_set_enable_developer_extras(
            webkit_web_view_get_settings(m_engine.view.get()), inspectable == Inspectable::yes);
}

void WebViewGtk::detach()
{
    m_signals.disconnectAll();
    m_calls.end();
    m_idleTimeout = {};
}

void WebViewGtk::connectSignals()
{
    auto* const view = m_engine.view.get();
    using Self = WebViewGtk*;
    const auto connect
        = [&](const char* signal, GCallback callback) { m_signals.connect(view, signal, callback, this); };

    connect("load-changed", G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent event, gpointer self) {
        static_cast<Self>(self)->loadChanged(event);
    }));
    connect("load-failed",
        G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent event, const char* url, const GError* error, gpointer self) {
            static_cast<Self>(self)->loadFailed(event, url, *error);
            return TRUE; // Otherwise the engine loads a page of its own about it.
        }));
    connect("web-process-terminated", G_CALLBACK(+[](WebKitWebView*, WebKitWebProcessTerminationReason, gpointer self) {
        static_cast<Self>(self)->processTerminated();
    }));
    connect("notify::estimated-load-progress",
        G_CALLBACK(+[](WebKitWebView*, GParamSpec*, gpointer self) { static_cast<Self>(self)->startIdleTimer(); }));
    connect("notify::uri", G_CALLBACK(+[](WebKitWebView*, GParamSpec*, gpointer data) {
        // The engine names the URL of a new load before it says that one has started, so this waits a turn.
        const auto self = static_cast<Self>(data);
        self->m_mainLoop.post(self->m_life.guard([self] { self->urlChanged(); }));
    }));
    connect("decide-policy",
        G_CALLBACK(+[](WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type, gpointer data) {
            const auto self = static_cast<Self>(data);
            const std::shared_ptr<WebKitPolicyDecision> kept(share(decision));
            self->m_calls.call([self, kept, type] {
                if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE)
                    self->decideResponse(WEBKIT_RESPONSE_POLICY_DECISION(kept.get()));
                else
                    self->decideAction(WEBKIT_NAVIGATION_POLICY_DECISION(kept.get()));
            });
            return TRUE;
        }));
    connect("permission-request", G_CALLBACK(+[](WebKitWebView*, WebKitPermissionRequest* request, gpointer data) {
        const auto self = static_cast<Self>(data);
        const std::shared_ptr<WebKitPermissionRequest> kept(share(request));
        self->m_calls.call([self, kept] { decidePermission(*self->m_uiDelegate, kept.get(), self->pageFacts()); });
        return TRUE;
    }));
    connect("run-file-chooser", G_CALLBACK(+[](WebKitWebView*, WebKitFileChooserRequest* request, gpointer data) {
        const auto self = static_cast<Self>(data);
        const std::shared_ptr<WebKitFileChooserRequest> kept(share(request));
        self->m_calls.call([self, kept] { chooseFiles(*self->m_uiDelegate, kept.get(), self->pageFacts()); });
        return TRUE;
    }));
    connect("user-message-received", G_CALLBACK(+[](WebKitWebView*, WebKitUserMessage* message, gpointer data) {
        const auto self = static_cast<Self>(data);
        const std::shared_ptr<WebKitUserMessage> kept(share(message));
        self->m_calls.call([self, kept] { self->m_bridge->messageArrived(kept.get()); });
        return TRUE;
    }));
}

void WebViewGtk::trustCertificate()
{
    // The engine's network process keeps this, and another one takes its place when it ends; so it is said every time.
    if (m_certificate)
        webkit_web_context_allow_tls_certificate_for_host(
            m_engine.context.get(), m_certificate.get(), m_options.certificate->host.c_str());
}

WebNavigation WebViewGtk::begin(double timeoutSeconds, std::function<void()> load)
{
    const OrderedCalls::Hold hold(m_calls);
    const auto superseded = m_tracker.requested();
    const auto navigation = m_tracker.requestedNavigation();
    m_idleTimeout = { .navigation = navigation, .seconds = timeoutSeconds, .timer = nullptr };
    startIdleTimer();
    m_waitingLoad = std::move(load);
    tell(superseded);
    return navigation;
}

void WebViewGtk::handOverLoad()
{
    if (!m_tracker.requestedNavigation())
        m_waitingLoad = nullptr; // It was given up while it waited.
    if (!m_waitingLoad || !m_tracker.mayHandOver())
        return;
    const OrderedCalls::Hold hold(m_calls);
    m_tracker.handedOver();
    trustCertificate();
    std::exchange(m_waitingLoad, nullptr)();
    const char* const uri = webkit_web_view_get_uri(m_engine.view.get());
    m_handedOverUrl = uri ? uri : "";
}

void WebViewGtk::loadPastCaches(const std::string& url)
{
    const GObjectPtr<WebKitURIRequest> request(webkit_uri_request_new(url.c_str()));
    // RFC 9111, section 5.2.1.4.
    soup_message_headers_replace(webkit_uri_request_get_http_headers(request.get()), "Cache-Control", "no-cache");
    webkit_web_view_load_request(m_engine.view.get(), request.get());
}

void WebViewGtk::tell(NavigationTracker::Notices notices)
{
    if (!m_tracker.isUnderWay(m_idleTimeout.navigation))
        m_idleTimeout = {};
    for (auto& notice : notices)
        m_calls.call([this, notice = std::move(notice)] { tellDelegate(notice); });
    handOverLoad();
}

void WebViewGtk::tellDelegate(const NavigationNotice& notice)
{
    switch (notice.kind) {
    case NavigationNotice::Kind::started:
        return m_navigationDelegate->didStartProvisional(notice.navigation);
    case NavigationNotice::Kind::committed:
        return m_navigationDelegate->didCommit(notice.navigation);
    case NavigationNotice::Kind::finished:
        return m_navigationDelegate->didFinish(notice.navigation);
    case NavigationNotice::Kind::failed:
        return m_navigationDelegate->didFail(notice.navigation, notice.error);
    case NavigationNotice::Kind::processEnded:
        return m_navigationDelegate->contentProcessDidTerminate();
    }
}

// Anew with every piece that arrives, of which the engine's estimate of the progress tells.
void WebViewGtk::startIdleTimer()
{
    if (m_idleTimeout.navigation)
        m_idleTimeout.timer = m_mainLoop.startTimer(m_idleTimeout.seconds, TimerRepeat::once, [this] { timedOut(); });
}

void WebViewGtk::timedOut()
{
    const auto navigation = m_idleTimeout.navigation;
    const auto notices = m_tracker.givenUp(navigation, webError(UrlError::timedOut));
    {
        const OrderedCalls::Hold hold(m_calls);
        webkit_web_view_stop_loading(m_engine.view.get());
    }
    tell(notices);
}

void WebViewGtk::loadChanged(WebKitLoadEvent event)
{
    switch (event) {
    case WEBKIT_LOAD_STARTED:
        return tell(m_tracker.started());
    case WEBKIT_LOAD_REDIRECTED:
        return;
    case WEBKIT_LOAD_COMMITTED: {
        const char* const uri = webkit_web_view_get_uri(m_engine.view.get());
        m_committedUrl = uri ? parseUrl(uri) : std::nullopt;
        return tell(m_tracker.committed());
    }
    case WEBKIT_LOAD_FINISHED:
        return tell(m_tracker.finished());
    }
}

void WebViewGtk::loadFailed(WebKitLoadEvent event, const char* url, const GError& error)
{
    const auto stage = event == WEBKIT_LOAD_COMMITTED ? LoadStage::committed : LoadStage::provisional;
    tell(m_tracker.failed(stage, webErrorOf(error, networkFacts(url ? url : ""))));
}

void WebViewGtk::processTerminated()
{
    m_committedUrl.reset();
    tell(m_tracker.processEnded());
}

// What a page calls itself without leaving the document; that cannot change its origin (HTML, history.pushState).
void WebViewGtk::urlChanged()
{
    if (!m_committedUrl || m_tracker.isLeavingDocument())
        return;
    const char* const uri = webkit_web_view_get_uri(m_engine.view.get());
    const auto url = uri ? parseUrl(uri) : std::nullopt;
    if (url && hasSameOrigin(*url, *m_committedUrl))
        m_committedUrl = url;
}

void WebViewGtk::decideAction(WebKitNavigationPolicyDecision* decision)
{
    const auto action = actionOf(decision);
    if (m_navigationDelegate->decideAction(action) == NavigationDecision::allow)
        return webkit_policy_decision_use(WEBKIT_POLICY_DECISION(decision));
    webkit_policy_decision_ignore(WEBKIT_POLICY_DECISION(decision));
    if (m_tracker.awaitsStart() && action.url && action.url->text == m_handedOverUrl)
        tell(m_tracker.refused({ "WebKitErrorDomain", frameLoadInterrupted }));
}

void WebViewGtk::decideResponse(WebKitResponsePolicyDecision* decision)
{
    auto* const policy = WEBKIT_POLICY_DECISION(decision);
    if (webkit_response_policy_decision_is_main_frame_main_resource(decision)) {
        auto* const response = webkit_response_policy_decision_get_response(decision);
        const auto status = static_cast<int>(webkit_uri_response_get_status_code(response));
        if (m_navigationDelegate->decideResponse({ .httpStatus = status }) == NavigationDecision::cancel) {
            m_tracker.failsFor(webError(UrlError::badServerResponse));
            return webkit_policy_decision_ignore(policy);
        }
    }
    // What cannot be shown would be downloaded.
    if (webkit_response_policy_decision_is_mime_type_supported(decision))
        webkit_policy_decision_use(policy);
    else
        webkit_policy_decision_ignore(policy);
}

FrameFacts WebViewGtk::pageFacts() const
{
    if (!m_committedUrl)
        return { .isMainFrame = true, .protocol = {}, .host = {} };
    return { .isMainFrame = true, .protocol = m_committedUrl->scheme, .host = m_committedUrl->host };
}

}
