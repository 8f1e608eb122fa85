#pragma once

#include "support/Await.h"
#include "web/GLibPointers.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brevanta::web {

struct HttpReply {
    unsigned status = 0; // 0 when there was none.
    std::string body {};
    std::string policy {}; // The Content-Security-Policy.
    std::string location {};
    GQuark errorDomain = 0;
    int errorCode = 0;

    [[nodiscard]] bool isError(GQuark domain, int code) const { return errorDomain == domain && errorCode == code; }
};

// A request that was sent; it is given up when the object goes.
class HttpRequest {
public:
    struct Content {
        const char* method = "GET";
        std::string body {};
        std::vector<std::pair<std::string, std::string>> headers {};
    };

    HttpRequest(SoupSession*, const std::string& url, const Content&);
    ~HttpRequest();
    HttpRequest(const HttpRequest&) = delete;
    HttpRequest& operator=(const HttpRequest&) = delete;

    [[nodiscard]] bool isAnswered() const { return m_state->reply.has_value(); }
    // Nothing, which is a reply without a status and without an error, when none comes in time.
    [[nodiscard]] HttpReply await(functional::Milliseconds within = functional::Milliseconds(20000)) const;

private:
    // Outlives the object until libsoup has called back.
    struct State {
        GLibPointer<SoupMessage> message;
        GLibPointer<GCancellable> cancellable;
        std::optional<HttpReply> reply {};
    };

    static void finish(GObject* session, GAsyncResult*, gpointer state);

    std::shared_ptr<State> m_state;
};

// A client that trusts one certificate and no other, and follows no redirects.
class HttpClient {
public:
    explicit HttpClient(const std::filesystem::path& certificate);

    [[nodiscard]] std::unique_ptr<HttpRequest> send(const std::string& url, const HttpRequest::Content& = {}) const;
    [[nodiscard]] HttpReply get(const std::string& url) const { return send(url)->await(); }

private:
    GLibPointer<SoupSession> m_session;
};

}
