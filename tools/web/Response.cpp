#include "web/Response.h"

#include "service/JsonText.h"
#include "web/GLibPointers.h"

namespace brevanta::web {

void addHeader(SoupServerMessage* message, const char* name, const char* value)
{
    soup_message_headers_replace(soup_server_message_get_response_headers(message), name, value);
}

void respond(SoupServerMessage* message, unsigned status, const char* contentType, std::string_view body)
{
    soup_server_message_set_status(message, status, nullptr);
    addHeader(message, "Cache-Control", "no-store");
    addHeader(message, "X-Content-Type-Options", "nosniff");
    soup_server_message_set_response(message, contentType, SOUP_MEMORY_COPY, body.data(), body.size());
}

void respondWithJson(SoupServerMessage* message, const nlohmann::json& value)
{
    respond(message, SOUP_STATUS_OK, "application/json", service::jsonText(value));
}

void respondWithStatus(SoupServerMessage* message, unsigned status)
{
    // RFC 9110, 15.3.5 and 15.4.5: these have no content.
    if (status == SOUP_STATUS_NO_CONTENT || status == SOUP_STATUS_NOT_MODIFIED) {
        soup_server_message_set_status(message, status, nullptr);
        return;
    }
    const auto title = std::to_string(status) + " " + soup_status_get_phrase(status);
    respond(message, status, "text/html; charset=utf-8",
        "<!doctype html>\n<html lang=\"en\"><meta charset=\"utf-8\"><title>" + title + "</title><h1>" + title
            + "</h1></html>\n");
}

std::string requestBody(SoupServerMessage* message)
{
    const GLibPointer<GBytes> bytes(soup_message_body_flatten(soup_server_message_get_request_body(message)));
    gsize size = 0;
    const auto* data = static_cast<const char*>(g_bytes_get_data(bytes.get(), &size));
    return data ? std::string(data, size) : std::string();
}

}
