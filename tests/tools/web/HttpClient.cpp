#include "HttpClient.h"

#include <utility>

namespace brevanta::web {

HttpRequest::HttpRequest(SoupSession* session, const std::string& url, const Content& content)
    : m_state(std::make_shared<State>(
          State { .message = GLibPointer<SoupMessage>(soup_message_new(content.method, url.c_str())),
              .cancellable = GLibPointer<GCancellable>(g_cancellable_new()) }))
{
    auto* message = m_state->message.get();
    soup_message_add_flags(message, SOUP_MESSAGE_NO_REDIRECT);
    for (const auto& [name, value] : content.headers)
        soup_message_headers_replace(soup_message_get_request_headers(message), name.c_str(), value.c_str());
    if (!content.body.empty()) {
        const GLibPointer<GBytes> bytes(g_bytes_new(content.body.data(), content.body.size()));
        soup_message_set_request_body_from_bytes(message, "application/json", bytes.get());
    }
    soup_session_send_and_read_async(
        session, message, G_PRIORITY_DEFAULT, m_state->cancellable.get(), finish, new std::shared_ptr<State>(m_state));
}

HttpRequest::~HttpRequest()
{
    if (isAnswered())
        return;
    g_cancellable_cancel(m_state->cancellable.get());
    (void)await();
}

void HttpRequest::finish(GObject* session, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<std::shared_ptr<State>> state(static_cast<std::shared_ptr<State>*>(data));
    ErrorSlot error;
    const GLibPointer<GBytes> bytes(soup_session_send_and_read_finish(SOUP_SESSION(session), result, error.address()));
    HttpReply reply;
    if (bytes) {
        auto* message = (*state)->message.get();
        auto* headers = soup_message_get_response_headers(message);
        const auto header = [&](const char* name) {
            const auto* value = soup_message_headers_get_one(headers, name);
            return std::string(value ? value : "");
        };
        gsize size = 0;
        const auto* content = static_cast<const char*>(g_bytes_get_data(bytes.get(), &size));
        reply.status = soup_message_get_status(message);
        reply.body = content ? std::string(content, size) : std::string();
        reply.policy = header("Content-Security-Policy");
        reply.location = header("Location");
    } else {
        reply.errorDomain = error.get()->domain;
        reply.errorCode = error.get()->code;
    }
    (*state)->reply = std::move(reply);
}

HttpReply HttpRequest::await(functional::Milliseconds within) const
{
    (void)functional::awaitUntil([this] { return isAnswered(); }, within);
    return m_state->reply.value_or(HttpReply {});
}

HttpClient::HttpClient(const std::filesystem::path& certificate)
    : m_session(soup_session_new_with_options("proxy-resolver", nullptr, nullptr))
{
    const GLibPointer<GTlsDatabase> trusted(g_tls_file_database_new(certificate.c_str(), nullptr));
    soup_session_set_tls_database(m_session.get(), trusted.get());
}

std::unique_ptr<HttpRequest> HttpClient::send(const std::string& url, const HttpRequest::Content& content) const
{
    return std::make_unique<HttpRequest>(m_session.get(), url, content);
}

}
