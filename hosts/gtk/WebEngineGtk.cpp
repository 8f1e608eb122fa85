#include "gtk/WebEngineGtk.h"

#include "gtk/GLibText.h"
#include "gtk/webextension/BridgeMessage.h"

namespace brevanta {

namespace {

// The files hold the user's session.
void makePrivateFolder(const std::filesystem::path& folder)
{
    std::error_code ignored; // Without the folder nothing is kept, and pages work all the same.
    std::filesystem::create_directories(folder, ignored);
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
}

GVariant* handlerList(const WebViewConfiguration& configuration)
{
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE(bridge::handlersType));
    for (const auto& handler : configuration.messageHandlers)
        g_variant_builder_add(&list, "(sb)", handler.name.c_str(), FALSE);
    for (const auto& handler : configuration.replyHandlers)
        g_variant_builder_add(&list, "(sb)", handler.name.c_str(), TRUE);
    return g_variant_builder_end(&list);
}

// Without this the engine saves what it cannot show into the user's download folder.
void refuseDownload(WebKitWebContext*, WebKitDownload* download, gpointer) { webkit_download_cancel(download); }

GObjectPtr<WebKitWebContext> newContext(const WebEngineOptions& options, const WebViewConfiguration& configuration)
{
    makePrivateFolder(options.data);
    const GObjectPtr<WebKitWebsiteDataManager> data(webkit_website_data_manager_new(
        "base-data-directory", options.data.c_str(), "base-cache-directory", options.cache.c_str(), nullptr));
    webkit_cookie_manager_set_persistent_storage(webkit_website_data_manager_get_cookie_manager(data.get()),
        (options.data / "cookies.sqlite").c_str(), WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);

    // A document of another site gets another web process, so that no script that is meant for the one that the client
    // knows of ever runs in the one that has just replaced it.
    GObjectPtr<WebKitWebContext> context(WEBKIT_WEB_CONTEXT(g_object_new(WEBKIT_TYPE_WEB_CONTEXT,
        "website-data-manager", data.get(), "process-swap-on-cross-site-navigation-enabled", TRUE, nullptr)));
    webkit_web_context_set_web_extensions_directory(context.get(), options.extensions.c_str());
    webkit_web_context_set_web_extensions_initialization_user_data(context.get(), handlerList(configuration));
    g_signal_connect(context.get(), "download-started", G_CALLBACK(refuseDownload), nullptr);
    return context;
}

GObjectPtr<WebKitSettings> newSettings(const std::string& applicationNameForUserAgent)
{
    GObjectPtr<WebKitSettings> settings(webkit_settings_new());
    webkit_settings_set_enable_media_stream(settings.get(), TRUE);
    // So that the view is told of every window that is wanted; it opens none.
    webkit_settings_set_javascript_can_open_windows_automatically(settings.get(), TRUE);
    const auto slash = applicationNameForUserAgent.find('/');
    const auto name = applicationNameForUserAgent.substr(0, slash);
    const auto version = slash == std::string::npos ? std::string() : applicationNameForUserAgent.substr(slash + 1);
    webkit_settings_set_user_agent_with_application_details(
        settings.get(), name.c_str(), version.empty() ? nullptr : version.c_str());
    return settings;
}

struct ReleaseScript {
    void operator()(WebKitUserScript* script) const { webkit_user_script_unref(script); }
};

GObjectPtr<WebKitUserContentManager> newUserContent(const std::string& documentStartScript)
{
    GObjectPtr<WebKitUserContentManager> content(webkit_user_content_manager_new());
    const std::unique_ptr<WebKitUserScript, ReleaseScript> script(
        webkit_user_script_new(validUtf8(documentStartScript).c_str(), WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
            WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, nullptr, nullptr));
    webkit_user_content_manager_add_script(content.get(), script.get());
    return content;
}

}

void prepareWebEngine()
{
    // Where the graphics driver is broken, buffers shared with the web process stay blank. Whoever set it knows better.
    g_setenv("WEBKIT_DISABLE_DMABUF_RENDERER", "1", FALSE);
}

WebEngine newWebEngine(const WebEngineOptions& options, const WebViewConfiguration& configuration)
{
    WebEngine engine { .context = newContext(options, configuration), .view = nullptr };
    const auto settings = newSettings(configuration.applicationNameForUserAgent);
    const auto content = newUserContent(configuration.documentStartScript);
    auto* const view = g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", engine.context.get(), "settings",
        settings.get(), "user-content-manager", content.get(), nullptr);
    engine.view.reset(WEBKIT_WEB_VIEW(g_object_ref_sink(view)));
    return engine;
}

}
