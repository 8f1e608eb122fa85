#include "gtk/WebViewGtk.h"

#include "gtk/UrlGtk.h"
#include "gtk/WebErrorMapping.h"
#include "gtk/WebPermissionsGtk.h"
#include "platform/SystemLog.h"

#include <utility>

namespace brevanta {

namespace {

constexpr int frameLoadInterrupted = WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE;

std::optional<Url> urlOf(const char* uri) { return uri ? parseUrl(uri) : std::nullopt; }

NetworkFacts networkFacts(const std::string& failedUrl)
{
    const auto url = parseUrl(failedUrl);
    return { .isNetworkAvailable = g_network_monitor_get_network_available(g_network_monitor_get_default()) != FALSE,
        .isLoopback = url && isLoopbackHost(url->host) };
}

bool isRedirect(WebKitPolicyDecision* decision)
{
    return webkit_navigation_action_is_redirect(
        webkit_navigation_policy_decision_get_navigation_action(WEBKIT_NAVIGATION_POLICY_DECISION(decision)));
}

NavigationAction factsOf(WebKitNavigationAction* action)
{
    const char* const uri = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
    // The redirection of a link is told as a click once more.
    const bool isClick = webkit_navigation_action_get_navigation_type(action) == WEBKIT_NAVIGATION_TYPE_LINK_CLICKED
        && !webkit_navigation_action_is_redirect(action);
    return { .url = urlOf(uri), .type = isClick ? NavigationType::linkActivated : NavigationType::other };
}

// What cannot be shown, and what the server wants saved (RFC 6266, section 4.2), browsers download.
bool isDownload(WebKitResponsePolicyDecision* decision)
{
    if (!webkit_response_policy_decision_is_mime_type_supported(decision))
        return true;
    auto* const headers = webkit_uri_response_get_http_headers(webkit_response_policy_decision_get_response(decision));
    char* disposition = nullptr;
    if (!headers || !soup_message_headers_get_content_disposition(headers, &disposition, nullptr))
        return false;
    const GLibPtr<char> owned(disposition);
    return g_ascii_strcasecmp(disposition, "attachment") == 0;
}

}

WebViewGtk::WebViewGtk(MainLoop& mainLoop, SystemLog& log, WebEngineOptions options)
    : m_mainLoop(mainLoop)
    , m_log(log)
    , m_options(std::move(options))
{
    prepareWebEngine();
    m_container.show();
}

WebViewGtk::~WebViewGtk() { detach(); }

void WebViewGtk::start(const WebViewConfiguration& configuration)
{
    m_navigationDelegate = &configuration.navigationDelegate;
    m_uiDelegate = &configuration.uiDelegate;
    m_browserDelegate = &configuration.browserDelegate;
    m_bridge.emplace(configuration);
    if (m_options.certificate) {
        GError* error = nullptr;
        m_certificate.reset(g_tls_certificate_new_from_file(m_options.certificate->file.c_str(), &error));
        if (const GLibPtr<GError> owned(error); owned)
            m_log.log("[WebView] the extra certificate cannot be read: " + std::string(owned->message));
    }
    m_engine = newWebEngine(m_options, configuration);
    m_navigations.emplace(m_mainLoop, configuration.navigationDelegate,
        NavigationReporter::Engine {
            .stop = [this] { webkit_web_view_stop_loading(m_engine.view.get()); }, .load = [this] { beginLoad(); } });
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
    if (!committedUrl())
        return nullptr;
    return begin(
        NavigationReporter::reloadTimeoutSeconds, [this] { webkit_web_view_reload_bypass_cache(m_engine.view.get()); });
}

void WebViewGtk::evaluate(const std::string& script)
{
    if (!m_engine.view)
        return;
    const OrderedCalls::Hold hold(m_navigations->calls());
    // The engine takes a text that is not UTF-8 for an empty one. It is not looked at here: it may have megabytes.
    webkit_web_view_evaluate_javascript(m_engine.view.get(), script.data(), static_cast<gssize>(script.size()), nullptr,
        nullptr, nullptr, nullptr, nullptr);
}

std::optional<Url> WebViewGtk::committedUrl() const
{
    return m_navigations ? m_navigations->tracker().document() : std::nullopt;
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
    if (m_navigations)
        m_navigations->end();
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
        auto& navigations = *static_cast<Self>(self)->m_navigations;
        navigations.tell(navigations.tracker().processEnded());
    }));
    connect("notify::estimated-load-progress", G_CALLBACK(+[](WebKitWebView*, GParamSpec*, gpointer self) {
        static_cast<Self>(self)->m_navigations->progressed();
    }));
    connect("notify::uri", G_CALLBACK(+[](WebKitWebView*, GParamSpec*, gpointer data) {
        // The engine names the URL of a new load before it says that one has started, so this waits a turn.
        const auto self = static_cast<Self>(data);
        self->m_mainLoop.post(self->m_life.guard([self] { self->urlChanged(); }));
    }));
    connect("decide-policy",
        G_CALLBACK(+[](WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type, gpointer data) {
            const auto self = static_cast<Self>(data);
            const std::shared_ptr<WebKitPolicyDecision> kept(share(decision));
            if (type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION && !isRedirect(decision))
                self->m_navigations->tracker().asked();
            self->m_navigations->calls().call([self, kept, type] {
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
        self->m_navigations->calls().call(
            [self, kept] { decidePermission(*self->m_uiDelegate, kept.get(), self->pageFacts()); });
        return TRUE;
    }));
    connect("run-file-chooser", G_CALLBACK(+[](WebKitWebView*, WebKitFileChooserRequest* request, gpointer data) {
        const auto self = static_cast<Self>(data);
        const std::shared_ptr<WebKitFileChooserRequest> kept(share(request));
        self->m_navigations->calls().call(
            [self, kept] { chooseFiles(*self->m_uiDelegate, kept.get(), self->pageFacts()); });
        return TRUE;
    }));
    connect("script-dialog", G_CALLBACK(+[](WebKitWebView*, WebKitScriptDialog* dialog, gpointer data) {
        // The engine uses the dialog once more after the signal, so it must not close before.
        const auto self = static_cast<Self>(data);
        self->m_mainLoop.post(self->m_life.guard([self, open = keepOpen(dialog)] {
            self->m_navigations->calls().call([self, open] { self->dialogOpened(open); });
        }));
        return TRUE;
    }));
    connect("create", G_CALLBACK(+[](WebKitWebView*, WebKitNavigationAction* action, gpointer data) {
        const auto self = static_cast<Self>(data);
        self->m_navigations->calls().call(
            [self, facts = factsOf(action)] { self->m_browserDelegate->newWindowRequested(facts); });
        return static_cast<GtkWidget*>(nullptr);
    }));
    // Cancelled by its context already.
    m_signals.connect(m_engine.context.get(), "download-started",
        G_CALLBACK(+[](WebKitWebContext*, WebKitDownload*, gpointer data) {
            const auto self = static_cast<Self>(data);
            self->m_navigations->calls().call([self] { self->m_navigationDelegate->downloadRefused(); });
        }),
        this);
    connect("user-message-received", G_CALLBACK(+[](WebKitWebView*, WebKitUserMessage* message, gpointer data) {
        const auto self = static_cast<Self>(data);
        const std::shared_ptr<WebKitUserMessage> kept(share(message));
        self->m_navigations->calls().call([self, kept] { self->m_bridge->messageArrived(kept.get()); });
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
    m_load = std::move(load);
    return m_navigations->requested(timeoutSeconds);
}

void WebViewGtk::beginLoad()
{
    trustCertificate();
    std::exchange(m_load, nullptr)();
    const char* const uri = webkit_web_view_get_uri(m_engine.view.get());
    m_loadUrl = uri ? uri : "";
}

void WebViewGtk::loadChanged(WebKitLoadEvent event)
{
    auto& tracker = m_navigations->tracker();
    switch (event) {
    case WEBKIT_LOAD_STARTED:
        return m_navigations->tell(tracker.started());
    case WEBKIT_LOAD_REDIRECTED:
        return;
    case WEBKIT_LOAD_COMMITTED: {
        // The view's own URL can be that of a load that was asked for meanwhile.
        auto* const resource = webkit_web_view_get_main_resource(m_engine.view.get());
        const auto url = resource ? urlOf(webkit_web_resource_get_uri(resource)) : std::nullopt;
        return m_navigations->tell(tracker.committed(nullptr, url));
    }
    case WEBKIT_LOAD_FINISHED:
        return m_navigations->tell(tracker.finished());
    }
}

void WebViewGtk::loadFailed(WebKitLoadEvent event, const char* url, const GError& error)
{
    const auto stage = event == WEBKIT_LOAD_COMMITTED ? LoadStage::committed : LoadStage::provisional;
    m_navigations->tell(
        m_navigations->tracker().failed(nullptr, stage, webErrorOf(error, networkFacts(url ? url : ""))));
}

void WebViewGtk::urlChanged()
{
    m_navigations->tracker().viewUrlChanged(urlOf(webkit_web_view_get_uri(m_engine.view.get())));
}

void WebViewGtk::decideAction(WebKitNavigationPolicyDecision* decision)
{
    const auto action = factsOf(webkit_navigation_policy_decision_get_navigation_action(decision));
    if (m_navigationDelegate->decideAction(action) == NavigationDecision::allow)
        return webkit_policy_decision_use(WEBKIT_POLICY_DECISION(decision));
    webkit_policy_decision_ignore(WEBKIT_POLICY_DECISION(decision));
    auto& tracker = m_navigations->tracker();
    if (tracker.awaitsStart() && action.url && action.url->text == m_loadUrl)
        m_navigations->tell(tracker.refused({ "WebKitErrorDomain", frameLoadInterrupted }));
}

void WebViewGtk::decideResponse(WebKitResponsePolicyDecision* decision)
{
    auto* const policy = WEBKIT_POLICY_DECISION(decision);
    if (webkit_response_policy_decision_is_main_frame_main_resource(decision)) {
        auto* const response = webkit_response_policy_decision_get_response(decision);
        const auto status = static_cast<int>(webkit_uri_response_get_status_code(response));
        if (m_navigationDelegate->decideResponse({ .httpStatus = status }) == NavigationDecision::cancel) {
            m_navigations->tracker().failsFor(webError(UrlError::badServerResponse));
            return webkit_policy_decision_ignore(policy);
        }
    }
    if (!isDownload(decision))
        return webkit_policy_decision_use(policy);
    webkit_policy_decision_ignore(policy);
    m_navigationDelegate->downloadRefused();
}

void WebViewGtk::dialogOpened(const ScriptDialog& dialog)
{
    m_navigations->pause();
    showDialog(*m_browserDelegate, dialog, pageFacts(), m_life.guard([this] { m_navigations->progressed(); }));
}

FrameFacts WebViewGtk::pageFacts() const
{
    const auto url = committedUrl();
    return { .isMainFrame = true, .protocol = url ? url->scheme : "", .host = url ? url->host : "" };
}

}
