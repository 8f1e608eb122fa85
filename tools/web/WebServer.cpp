#include "web/WebServer.h"

#include "service/JsonText.h"
#include "web/Response.h"

#include <utility>

namespace brevanta::web {

using service::fail;
using service::ServiceError;

static std::string escapedPathOf(SoupServerMessage* message)
{
    return g_uri_get_path(soup_server_message_get_uri(message));
}

std::expected<std::unique_ptr<WebServer>, ServiceError> WebServer::start(Options options)
{
    std::unique_ptr<WebServer> server(new WebServer(std::move(options)));
    if (const auto opened = server->openAnew(); !opened)
        return std::unexpected(opened.error());
    return server;
}

WebServer::WebServer(Options options)
    : m_options(std::move(options))
    , m_server(soup_server_new("server-header", "brevanta-web", nullptr))
{
    soup_server_add_handler(
        m_server.get(), nullptr,
        [](SoupServer*, SoupServerMessage* message, const char*, GHashTable*, gpointer data) {
            static_cast<WebServer*>(data)->handle(message);
        },
        this, nullptr);
}

WebServer::~WebServer()
{
    soup_server_disconnect(m_server.get());
    soup_server_remove_handler(m_server.get(), nullptr);
}

std::expected<void, ServiceError> WebServer::misbehave(Misbehaviour misbehaviour)
{
    const bool changesSockets = misbehaviour.mode == Misbehaviour::Mode::refuse
        || (m_misbehaviour && m_misbehaviour->mode == Misbehaviour::Mode::refuse);
    m_misbehaviour = std::move(misbehaviour);
    return changesSockets ? openAnew() : std::expected<void, ServiceError>();
}

std::expected<void, ServiceError> WebServer::behave()
{
    const bool wasRefusing = m_misbehaviour && m_misbehaviour->mode == Misbehaviour::Mode::refuse;
    const auto previousChoice = std::exchange(m_certificateChoice, CertificateChoice::own);
    m_misbehaviour.reset();
    if (!wasRefusing && previousChoice == CertificateChoice::own)
        return {};
    return openAnew();
}

std::expected<void, ServiceError> WebServer::use(CertificateChoice choice)
{
    if (choice == CertificateChoice::other && !m_options.otherCertificate)
        return fail("there is no other certificate");
    m_certificateChoice = choice;
    return openAnew();
}

std::expected<void, ServiceError> WebServer::openAnew()
{
    soup_server_disconnect(m_server.get());
    const bool isOwn = m_certificateChoice == CertificateChoice::own;
    soup_server_set_tls_certificate(
        m_server.get(), isOwn ? m_options.certificate.get() : m_options.otherCertificate.get());
    const bool isRefusing = m_misbehaviour && m_misbehaviour->mode == Misbehaviour::Mode::refuse;
    for (auto& port : m_options.ports) {
        if (const auto taken = port.takeAgain(); !taken)
            return taken;
        if (isRefusing)
            continue;
        if (const auto listening = port.listen(m_server.get()); !listening)
            return listening;
    }
    return {};
}

void WebServer::handle(SoupServerMessage* message)
{
    const auto path = escapedPathOf(message);
    if (m_options.driver && path == "/driver.js") {
        if (const auto script = m_options.site.driverScript())
            return send(message, *script);
        return respondWithStatus(message, SOUP_STATUS_NOT_FOUND);
    }
    if (m_options.driver && path.starts_with("/driver/"))
        return m_options.driver->handle(message, path);
    // The page asks there again and again; a misbehaviour is for the application's own files.
    if (m_options.backEnd && path == "/day")
        return m_options.backEnd->handle(message);

    note(message, path);
    if (const auto misbehaviour = takeMisbehaviour())
        misanswer(message, *misbehaviour);
    else
        answer(message);
}

void WebServer::note(SoupServerMessage* message, const std::string& path)
{
    auto headers = nlohmann::json::object();
    soup_message_headers_foreach(
        soup_server_message_get_request_headers(message),
        [](const char* name, const char* value, gpointer data) {
            (*static_cast<nlohmann::json*>(data))[name] = printableHeader(name, value);
        },
        &headers);
    const std::string method = soup_server_message_get_method(message);
    if (m_options.print)
        m_options.print("request " + service::jsonText({ { "method", method }, { "path", path } }));
    m_log.note({ { "method", method }, { "path", path }, { "headers", std::move(headers) } });
}

std::optional<Misbehaviour> WebServer::takeMisbehaviour()
{
    auto result = m_misbehaviour;
    if (m_misbehaviour && m_misbehaviour->remainingTimes && !--*m_misbehaviour->remainingTimes)
        m_misbehaviour.reset();
    return result;
}

void WebServer::misanswer(SoupServerMessage* message, const Misbehaviour& misbehaviour)
{
    switch (misbehaviour.mode) {
    case Misbehaviour::Mode::refuse: // Came in on a connection that was being closed.
    case Misbehaviour::Mode::close: {
        const GLibPointer<GIOStream> connection(soup_server_message_steal_connection(message));
        g_io_stream_close_async(connection.get(), G_PRIORITY_DEFAULT, nullptr, nullptr, nullptr);
        return;
    }
    case Misbehaviour::Mode::hang:
        return soup_server_message_pause(message);
    case Misbehaviour::Mode::status:
        return respondWithStatus(message, misbehaviour.status);
    case Misbehaviour::Mode::redirect:
        respondWithStatus(message, SOUP_STATUS_FOUND);
        return addHeader(message, "Location", misbehaviour.url.c_str());
    case Misbehaviour::Mode::delay:
        return answerLater(message, misbehaviour.delay);
    }
}

void WebServer::answerLater(SoupServerMessage* message, std::chrono::milliseconds time)
{
    soup_server_message_pause(message);
    m_delayedAnswers.push_back({ .message = shared(message), .timer = {} });
    const auto delayed = std::prev(m_delayedAnswers.end());
    delayed->timer = EventSource::after(time, [this, delayed] {
        answer(delayed->message.get());
        soup_server_message_unpause(delayed->message.get());
        m_delayedAnswers.erase(delayed);
    });
}

void WebServer::answer(SoupServerMessage* message)
{
    const std::string_view method = soup_server_message_get_method(message);
    if (method != "GET" && method != "HEAD") {
        respondWithStatus(message, SOUP_STATUS_METHOD_NOT_ALLOWED);
        return addHeader(message, "Allow", "GET, HEAD");
    }
    if (const auto file = m_options.site.find(escapedPathOf(message)))
        send(message, *file);
    else
        respondWithStatus(message, SOUP_STATUS_NOT_FOUND);
}

void WebServer::send(SoupServerMessage* message, const SiteFile& file)
{
    respond(message, SOUP_STATUS_OK, file.contentType.c_str(), file.body);
    if (!file.isPartOfApplication)
        return;
    std::string policy = "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
                         "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
    if (m_options.driver || m_options.backEnd)
        policy += "; connect-src 'self'";
    addHeader(message, "Content-Security-Policy", policy.c_str());
    addHeader(message, "Referrer-Policy", "no-referrer");
}

}
