#pragma once

#include "gtk/GObjectPtr.h"

#include <libsoup/soup.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevanta {

// Serves pages on the loopback address, from the test's own main loop.
class WebServer {
public:
    struct Page {
        std::string body;
        unsigned status { 200 };
        std::string type { "text/html" };
        std::string location; // For a redirection.
        std::string disposition {}; // Content-Disposition.
        bool staysSilent { false }; // Takes the request and never answers.
        bool neverEnds { false }; // Answers with the body and leaves the connection open.
    };

    struct Request {
        std::string path;
        std::string userAgent;
        std::string cacheControl;
    };

    // With a certificate it speaks TLS only.
    explicit WebServer(GTlsCertificate* certificate = nullptr);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    // A path that no page has been put at is answered with 404.
    void put(const std::string& path, Page page) { m_pages[path] = std::move(page); }

    // A little of the answer that never ends.
    void sendMore();

    [[nodiscard]] std::string url(const std::string& path, const std::string& host = "127.0.0.1") const;
    [[nodiscard]] const std::vector<Request>& requests() const { return m_requests; }
    [[nodiscard]] std::size_t countOf(const std::string& path) const;

private:
    static void handle(
        SoupServer* server, SoupServerMessage* message, const char* path, GHashTable* query, gpointer self);
    void answer(SoupServerMessage* message, const Page& page);

    GObjectPtr<SoupServer> m_server;
    bool m_isSecure { false };
    guint m_port { 0 };
    std::map<std::string, Page> m_pages;
    std::vector<Request> m_requests;
    GObjectPtr<SoupServerMessage> m_neverEnding;
};

// A port of the loopback address on which nobody listens.
[[nodiscard]] guint16 refusingPort();

}
