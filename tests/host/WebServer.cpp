#include "host/WebServer.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

std::string header(SoupMessageHeaders* headers, const char* name)
{
    const char* const value = soup_message_headers_get_list(headers, name);
    return value ? value : "";
}

}

WebServer::WebServer(GTlsCertificate* certificate)
    : m_server(soup_server_new(nullptr, nullptr))
    , m_isSecure(certificate != nullptr)
{
    if (certificate)
        soup_server_set_tls_certificate(m_server.get(), certificate);
    soup_server_add_handler(m_server.get(), nullptr, handle, this, nullptr);
    const auto options = static_cast<SoupServerListenOptions>(
        SOUP_SERVER_LISTEN_IPV4_ONLY | (certificate ? SOUP_SERVER_LISTEN_HTTPS : 0));
    EXPECT_TRUE(soup_server_listen_local(m_server.get(), 0, options, nullptr));
    if (GSList* const uris = soup_server_get_uris(m_server.get())) {
        m_port = static_cast<guint>(g_uri_get_port(static_cast<GUri*>(uris->data)));
        g_slist_free_full(uris, [](gpointer uri) { g_uri_unref(static_cast<GUri*>(uri)); });
    }
}

WebServer::~WebServer() { soup_server_disconnect(m_server.get()); }

std::string WebServer::url(const std::string& path, const std::string& host) const
{
    return (m_isSecure ? "https://" : "http://") + host + ":" + std::to_string(m_port) + path;
}

std::size_t WebServer::countOf(const std::string& path) const
{
    return static_cast<std::size_t>(std::ranges::count(m_requests, path, &Request::path));
}

void WebServer::handle(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*, gpointer data)
{
    auto& self = *static_cast<WebServer*>(data);
    auto* const headers = soup_server_message_get_request_headers(message);
    self.m_requests.push_back({ path, header(headers, "User-Agent"), header(headers, "Cache-Control") });
    const auto page = self.m_pages.find(path);
    if (page == self.m_pages.end())
        return soup_server_message_set_status(message, SOUP_STATUS_NOT_FOUND, nullptr);
    self.answer(message, page->second);
}

void WebServer::answer(SoupServerMessage* message, const Page& page)
{
    if (page.staysSilent)
        return soup_server_message_pause(message);
    soup_server_message_set_status(message, page.status, nullptr);
    auto* const headers = soup_server_message_get_response_headers(message);
    if (!page.location.empty())
        soup_message_headers_append(headers, "Location", page.location.c_str());
    if (!page.disposition.empty())
        soup_message_headers_append(headers, "Content-Disposition", page.disposition.c_str());
    if (page.neverEnds) {
        soup_message_headers_set_encoding(headers, SOUP_ENCODING_CHUNKED);
        soup_message_headers_append(headers, "Content-Type", page.type.c_str());
        soup_message_body_append(
            soup_server_message_get_response_body(message), SOUP_MEMORY_COPY, page.body.data(), page.body.size());
        m_neverEnding = share(message);
        // The message goes on by itself until what there is has been sent.
        return;
    }
    soup_server_message_set_response(message, page.type.c_str(), SOUP_MEMORY_COPY, page.body.data(), page.body.size());
}

void WebServer::sendMore()
{
    if (!m_neverEnding)
        return;
    static constexpr std::string_view piece = "<p>and more of the same</p>";
    soup_message_body_append(
        soup_server_message_get_response_body(m_neverEnding.get()), SOUP_MEMORY_STATIC, piece.data(), piece.size());
    soup_server_message_unpause(m_neverEnding.get());
}

guint16 refusingPort()
{
    const GObjectPtr<GSocketListener> listener(g_socket_listener_new());
    return g_socket_listener_add_any_inet_port(listener.get(), nullptr, nullptr);
}

}
