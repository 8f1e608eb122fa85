// Runs inside of the web process, next to the page. It gives each document its window.webkit.messageHandlers as native
// functions that are bound to what the engine knew of the document's frame when the document came to be; a page can
// neither change them nor reach those facts. Where this cannot be loaded there is no bridge at all.

#include "gtk/GObjectPtr.h"
#include "gtk/webextension/BridgeMessage.h"

#include <gmodule.h>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <webkit2/webkit-web-extension.h>

namespace brevanta {

namespace {

struct Handler {
    std::string name;
    bool replies { false };
};

struct Bridge {
    std::vector<Handler> handlers;
    // The page's own scripts cannot redefine what is read in here.
    GObjectPtr<WebKitScriptWorld> privateWorld { webkit_script_world_new() };
};

// One handler of one document.
struct Channel {
    Channel(WebKitWebPage* newPage, Handler newHandler, bool newIsMainFrame, std::string newOrigin)
        : handler(std::move(newHandler))
        , isMainFrame(newIsMainFrame)
        , origin(std::move(newOrigin))
    {
        g_weak_ref_init(&page, newPage);
    }
    ~Channel() { g_weak_ref_clear(&page); }
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    GWeakRef page; // A script may hold its function for longer than there is a page.
    Handler handler;
    bool isMainFrame;
    std::string origin;
};

// Nothing for what JSON has no form for, such as undefined or a cycle, and for what is too large.
std::optional<std::string> bodyOf(JSCValue* value)
{
    const GLibPtr<char> json(jsc_value_to_json(value, 0));
    if (!json || std::string_view(json.get()).size() > bridge::largestBody)
        return std::nullopt;
    return json.get();
}

std::string originOf(WebKitFrame* frame, WebKitScriptWorld* privateWorld)
{
    const GObjectPtr<JSCContext> context(webkit_frame_get_js_context_for_script_world(frame, privateWorld));
    const GObjectPtr<JSCValue> origin(jsc_context_evaluate(context.get(), "self.origin", -1));
    if (!jsc_value_is_string(origin.get()))
        return "null";
    const GLibPtr<char> text(jsc_value_to_string(origin.get()));
    return text ? text.get() : "null";
}

WebKitUserMessage* newMessage(const Channel& channel, const std::string& body)
{
    return webkit_user_message_new(bridge::messageName,
        g_variant_new(bridge::messageType, channel.handler.name.c_str(), channel.isMainFrame ? TRUE : FALSE,
            channel.origin.c_str(), body.c_str()));
}

// The JSON value of a reply; null for a message that is none, or holds none.
JSCValue* newValue(JSCContext* context, WebKitUserMessage* reply)
{
    auto* const parameters = reply ? webkit_user_message_get_parameters(reply) : nullptr;
    if (!parameters || !g_variant_is_of_type(parameters, G_VARIANT_TYPE(bridge::replyType)))
        return nullptr;
    const char* json = nullptr;
    g_variant_get(parameters, "m&s", &json);
    return json ? jsc_value_new_from_json(context, json) : nullptr;
}

void replyArrived(GObject* page, GAsyncResult* result, gpointer data)
{
    const GObjectPtr<JSCValue> resolve(static_cast<JSCValue*>(data));
    const GObjectPtr<WebKitUserMessage> reply(
        webkit_web_page_send_message_to_view_finish(WEBKIT_WEB_PAGE(page), result, nullptr));
    auto* const context = jsc_value_get_context(resolve.get());
    GObjectPtr<JSCValue> value(newValue(context, reply.get()));
    if (!value)
        value.reset(jsc_value_new_undefined(context));
    const GObjectPtr<JSCValue> nothing(
        jsc_value_function_call(resolve.get(), JSC_TYPE_VALUE, value.get(), G_TYPE_NONE));
}

struct Question {
    WebKitWebPage* page;
    WebKitUserMessage* message; // Null when there is nothing to ask.
};

void ask(JSCValue* resolve, JSCValue* reject, gpointer data)
{
    const auto& question = *static_cast<Question*>(data);
    if (!question.message) {
        const GObjectPtr<JSCValue> nothing(
            jsc_value_function_call(reject, G_TYPE_STRING, "The message has no JSON form.", G_TYPE_NONE));
        return;
    }
    webkit_web_page_send_message_to_view(question.page, question.message, nullptr, replyArrived, g_object_ref(resolve));
}

// Called as postMessage by the page's scripts.
JSCValue* postMessage(GPtrArray* arguments, gpointer data)
{
    const auto& channel = *static_cast<Channel*>(data);
    auto* const context = jsc_context_get_current();
    const GObjectPtr<WebKitWebPage> page(
        static_cast<WebKitWebPage*>(g_weak_ref_get(const_cast<GWeakRef*>(&channel.page))));
    auto* const value = arguments->len > 0 ? static_cast<JSCValue*>(g_ptr_array_index(arguments, 0)) : nullptr;
    const auto body = page && value ? bodyOf(value) : std::nullopt;
    if (channel.handler.replies) {
        // A toJSON that throws rejects the promise, as every failure of an asynchronous call does.
        jsc_context_clear_exception(context);
        Question question { page.get(), body ? newMessage(channel, *body) : nullptr };
        return jsc_value_new_promise(context, ask, &question);
    }
    if (body)
        webkit_web_page_send_message_to_view(page.get(), newMessage(channel, *body), nullptr, nullptr, nullptr);
    return jsc_value_new_undefined(context);
}

void destroyChannel(gpointer channel) { delete static_cast<Channel*>(channel); }

GObjectPtr<JSCValue> newObject(JSCContext* context)
{
    return GObjectPtr<JSCValue>(jsc_value_new_object(context, nullptr, nullptr));
}

// Neither to be overwritten nor to be deleted.
void defineForGood(JSCValue* object, const char* name, JSCValue* value)
{
    jsc_value_object_define_property_data(object, name, JSC_VALUE_PROPERTY_ENUMERABLE, value);
}

// The view is not told whose dialog it is to show. In other frames than the main one they come to what comes of a
// dialog that is dismissed.
void takeDialogsAway(JSCContext* context, JSCValue* window)
{
    for (const auto& [name, replacement] : { std::pair { "alert", "() => {}" }, std::pair { "confirm", "() => false" },
             std::pair { "prompt", "() => null" } }) {
        const GObjectPtr<JSCValue> function(jsc_context_evaluate(context, replacement, -1));
        defineForGood(window, name, function.get());
    }
}

void windowObjectCleared(WebKitScriptWorld* world, WebKitWebPage* page, WebKitFrame* frame, gpointer data)
{
    const auto& bridge = *static_cast<Bridge*>(data);
    const bool isMainFrame = webkit_frame_is_main_frame(frame);
    const auto origin = originOf(frame, bridge.privateWorld.get());

    const GObjectPtr<JSCContext> context(webkit_frame_get_js_context_for_script_world(frame, world));
    const auto messageHandlers = newObject(context.get());
    for (const auto& handler : bridge.handlers) {
        const auto object = newObject(context.get());
        const GObjectPtr<JSCValue> function(jsc_value_new_function_variadic(context.get(), "postMessage",
            G_CALLBACK(postMessage), new Channel(page, handler, isMainFrame, origin), destroyChannel, JSC_TYPE_VALUE));
        defineForGood(object.get(), "postMessage", function.get());
        defineForGood(messageHandlers.get(), handler.name.c_str(), object.get());
    }
    const auto webkit = newObject(context.get());
    defineForGood(webkit.get(), "messageHandlers", messageHandlers.get());
    const GObjectPtr<JSCValue> window(jsc_context_get_global_object(context.get()));
    defineForGood(window.get(), "webkit", webkit.get());
    if (!isMainFrame)
        takeDialogsAway(context.get(), window.get());
}

std::vector<Handler> handlersIn(GVariant* list)
{
    std::vector<Handler> handlers;
    if (!list || !g_variant_is_of_type(list, G_VARIANT_TYPE(bridge::handlersType)))
        return handlers;
    GVariantIter iterator;
    g_variant_iter_init(&iterator, list);
    const char* name = nullptr;
    gboolean replies = FALSE;
    while (g_variant_iter_next(&iterator, "(&sb)", &name, &replies))
        handlers.push_back({ name, replies != FALSE });
    return handlers;
}

}

}

extern "C" G_MODULE_EXPORT void webkit_web_extension_initialize_with_user_data(WebKitWebExtension*, GVariant* userData)
{
    // Goes with the connection, which lasts for as long as the process.
    auto* const bridge = new brevanta::Bridge { .handlers = brevanta::handlersIn(userData) };
    g_signal_connect_data(
        webkit_script_world_get_default(), "window-object-cleared", G_CALLBACK(brevanta::windowObjectCleared), bridge,
        [](gpointer data, GClosure*) { delete static_cast<brevanta::Bridge*>(data); }, static_cast<GConnectFlags>(0));
}
