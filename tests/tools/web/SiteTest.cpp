#include "WebTool.h"
#include "support/BrevantaClient.h"
#include "support/StandInService.h"

#include <arpa/inet.h>
#include <array>
#include <fstream>
#include <netinet/in.h>
#include <nlohmann/json.hpp>
#include <sys/socket.h>

namespace brevanta::web {

class WebToolSite : public WebToolTest { };

static constexpr const char* secret = "the secret";

static void write(const std::filesystem::path& path, const std::string& text) { std::ofstream(path) << text; }

// Everything that comes back for the path as it stands, which no client library is given to tidy.
static std::string rawReply(int port, const std::string& path)
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    const auto request = "GET " + path + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n";
    EXPECT_EQ(::send(descriptor, request.data(), request.size(), MSG_NOSIGNAL), static_cast<ssize_t>(request.size()));
    ::shutdown(descriptor, SHUT_WR);
    std::string reply;
    std::array<char, 4096> buffer;
    for (ssize_t size = 0; (size = ::recv(descriptor, buffer.data(), buffer.size(), 0)) > 0;)
        reply.append(buffer.data(), static_cast<std::size_t>(size));
    ::close(descriptor);
    return reply;
}

TEST_F(WebToolSite, TheApplicationIsServedUnderAStrictPolicy)
{
    struct Row {
        const char* path;
        unsigned status;
        const char* content;
    };
    static constexpr Row rows[] = {
        { "/", 200, "<title>Brevanta</title>" },
        { "/?from=link", 200, "<title>Brevanta</title>" },
        { "/base.css", 200, "prefers-color-scheme: dark" },
        { "/app.js", 200, "window.demo" },
        { "/bridge.js", 200, "kestreluneNav" },
        { "/logo.svg", 200, "<svg" },
        { "/sign-in", 200, "href=\"/\"" },
        { "/driver.js", 200, "/driver/next" },
        { "/index.html", 404, "404" },
        { "/elsewhere", 404, "404" },
        { "/day", 404, "404" },
        { "/pages/none.html", 404, "404" },
    };
    const auto client = this->client();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        const auto reply = client.get(url(row.path));
        EXPECT_EQ(reply.status, row.status);
        EXPECT_NE(reply.body.find(row.content), std::string::npos);
        EXPECT_EQ(reply.policy.empty(), row.status != 200);
        EXPECT_EQ(reply.policy.find("unsafe"), std::string::npos);
    }
    EXPECT_NE(client.get(url("/")).body.find("\"/driver.js\""), std::string::npos);
    EXPECT_EQ(client.send(url("/"), { .method = "POST", .body = "{}" })->await().status, 405u);
}

TEST_F(WebToolSite, PagesAreServedAsTheyAreAndNothingOutsideOfTheirDirectory)
{
    const std::string page = "<!doctype html><head></head>a page";
    write(path("pages/a page.html"), page);
    std::filesystem::create_directory(path("pages/more"));
    write(path("pages/more/b.txt"), "more");
    write(path("secret.txt"), secret);
    std::filesystem::create_symlink(path("secret.txt"), path("pages/link.txt"));

    const auto reply = client().get(url("/pages/a%20page.html"));
    EXPECT_EQ(reply.body, page);
    EXPECT_EQ(reply.policy, "");
    EXPECT_NE(rawReply(plainPort(), "/pages/more/b.txt").find("more"), std::string::npos);

    static constexpr const char* paths[] = { "/pages/../secret.txt", "/pages/more/../../secret.txt",
        "/pages/%2e%2e/secret.txt", "/pages/..%2fsecret.txt", "/pages/%2e%2e%2fsecret.txt", "/pages/link.txt",
        "/pages/a%20page.html%00.txt", "/pages/", "/pages/more", "/../secret.txt" };
    for (const auto* each : paths) {
        const auto raw = rawReply(plainPort(), each);
        EXPECT_TRUE(raw.starts_with("HTTP/1.1 4")) << each << "\n" << raw;
        EXPECT_EQ(raw.find(secret), std::string::npos) << each;
    }
    const auto absolute = rawReply(plainPort(), "/pages/" + path("secret.txt"));
    EXPECT_TRUE(absolute.starts_with("HTTP/1.1 4")) << absolute;
}

class WebToolWithoutDriver : public WebToolTest {
protected:
    void SetUp() override { start({}); }
};

TEST_F(WebToolWithoutDriver, ThereIsNothingOfTheDriver)
{
    const auto client = this->client();
    EXPECT_EQ(client.get(url("/")).body.find("driver"), std::string::npos);
    EXPECT_EQ(client.get(url("/driver.js")).status, 404u);
    EXPECT_EQ(client.get(url("/driver/next")).status, 404u);
    EXPECT_EQ(command("evaluate 1"), "error: there is no driver; see --driver");
}

TEST_F(WebToolWithoutDriver, TheBackEndTellsTheDayWithoutTheTokenForAsLongAsThereIsAService)
{
    functional::StandInService service(functional::serviceExecutable());
    ASSERT_TRUE(service.start());
    start({ "--service-control", service.controlPath() });
    ASSERT_TRUE(service.command("task Write “the report” 30"));
    // Far more than a socket holds.
    ASSERT_TRUE(service.command("list auto_track_apps 200000"));
    const auto client = this->client();
    EXPECT_NE(client.get(url("/")).body.find("\"/day.js\""), std::string::npos);
    const auto day = nlohmann::json::parse(client.get(url("/day")).body, nullptr, false);
    ASSERT_TRUE(day.is_object());
    EXPECT_EQ(day.value("active_task_title", ""), "Write “the report”");
    EXPECT_EQ(day.value("auto_track_apps_count", 0), 200000);
    EXPECT_FALSE(day.contains("block_reason"));
    EXPECT_EQ(day.dump().find("stand-in-token"), std::string::npos);
    service.stop();
    EXPECT_EQ(client.get(url("/day")).status, 503u);
}

}
