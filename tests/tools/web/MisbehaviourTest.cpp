#include "WebTool.h"

#include <chrono>
#include <csignal>

namespace brevanta::web {

class WebToolMisbehaviour : public WebToolTest { };

TEST_F(WebToolMisbehaviour, AStatusOrARedirectIsAnsweredAsOftenAsToldAndThenAllIsWell)
{
    struct Row {
        const char* command;
        unsigned status;
        const char* location;
    };
    static constexpr Row rows[] = {
        { "status 503 times 2", 503, "" },
        { "status 404 times 2", 404, "" },
        { "status 204 times 2", 204, "" },
        { "redirect https://example.org/a times 2", 302, "https://example.org/a" },
    };
    const auto client = this->client();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command);
        EXPECT_EQ(command(row.command), "ok");
        for (int time = 0; time < 2; ++time) {
            const auto reply = client.get(url("/"));
            EXPECT_EQ(reply.status, row.status);
            EXPECT_EQ(reply.location, row.location);
        }
        EXPECT_EQ(client.get(url("/")).status, 200u);
    }
    EXPECT_EQ(command("status 500"), "ok");
    EXPECT_EQ(client.get(url("/app.js")).status, 500u);
    EXPECT_EQ(command("behave"), "ok");
    EXPECT_EQ(client.get(url("/app.js")).status, 200u);
}

TEST_F(WebToolMisbehaviour, ARefusedClientOfAnOpenConnectionIsRefusedToo)
{
    const auto client = this->client();
    ASSERT_EQ(client.get(url("/")).status, 200u);
    EXPECT_EQ(command("refuse"), "ok");
    EXPECT_TRUE(client.get(url("/")).isError(G_IO_ERROR, G_IO_ERROR_CONNECTION_REFUSED));
    EXPECT_EQ(command("behave"), "ok");
    EXPECT_EQ(client.get(url("/")).status, 200u);
}

TEST_F(WebToolMisbehaviour, AHangingRequestStaysSoWhileOthersAreAnswered)
{
    const auto client = this->client();
    EXPECT_EQ(command("hang"), "ok");
    const auto hanging = client.send(url("/"));
    EXPECT_EQ(begin("await / 1")->await(), "ok");
    EXPECT_EQ(command("behave"), "ok");
    EXPECT_EQ(client.get(url("/app.js")).status, 200u);
    EXPECT_FALSE(hanging->isAnswered());
}

TEST_F(WebToolMisbehaviour, AClosedConnectionGivesNoReply)
{
    EXPECT_EQ(command("close times 1"), "ok");
    const auto reply = client().get(url("/"));
    EXPECT_EQ(reply.status, 0u);
    EXPECT_NE(reply.errorDomain, 0u);
    EXPECT_EQ(client().get(url("/")).status, 200u);
}

TEST_F(WebToolMisbehaviour, ADelayedReplyComesWholeAndNotBeforeItsTime)
{
    EXPECT_EQ(command("delay 300 times 1"), "ok");
    const auto start = std::chrono::steady_clock::now();
    const auto reply = client().get(url("/"));
    EXPECT_GE(std::chrono::steady_clock::now() - start, Milliseconds(300));
    EXPECT_EQ(reply.status, 200u);
    EXPECT_NE(reply.body.find("<title>Brevanta</title>"), std::string::npos);
}

TEST_F(WebToolMisbehaviour, AnotherCertificateIsMetEvenByAClientThatHasSeenTheOwnOne)
{
    const auto client = this->client();
    ASSERT_EQ(client.get(url("/")).status, 200u);
    EXPECT_EQ(command("certificate other"), "ok");
    EXPECT_TRUE(client.get(url("/")).isError(G_TLS_ERROR, G_TLS_ERROR_BAD_CERTIFICATE));
    EXPECT_EQ(HttpClient(path("other.pem")).get(url("/")).status, 200u);
    EXPECT_EQ(command("behave"), "ok");
    EXPECT_EQ(client.get(url("/")).status, 200u);
}

TEST_F(WebToolMisbehaviour, MistakesAreNamedAndChangeNothing)
{
    static constexpr const char* lines[]
        = { "", "fly", "status", "status 99", "status 200 times 0", "delay soon", "redirect", "refuse times 1",
              "hang on", "certificate", "certificate third", "await /", "await / -1", "port 1", "evaluate" };
    for (const auto* line : lines)
        EXPECT_TRUE(command(line).starts_with("error: ")) << line;
    EXPECT_EQ(client().get(url("/")).status, 200u);
}

TEST_F(WebToolMisbehaviour, RequestsAreCountedAndTheirSecretsAreNeitherToldNorPrinted)
{
    const auto client = this->client();
    const auto pending = begin("await /sign-in +2");
    EXPECT_EQ(client.get(url("/sign-in?again=1")).status, 200u);
    EXPECT_EQ(
        client.send(url("/sign-in"), { .headers = { { "Authorization", "Bearer hush" }, { "Cookie", "a=hush" } } })
            ->await()
            .status,
        200u);
    EXPECT_EQ(pending->await(), "ok");
    EXPECT_EQ(command("requests"), R"(ok {"/sign-in":2})");
    const auto last = command("last-request");
    EXPECT_NE(last.find(R"("Authorization":"11 bytes")"), std::string::npos) << last;
    EXPECT_NE(last.find(R"("Cookie":"6 bytes")"), std::string::npos) << last;
    EXPECT_NE(last.find(R"("method":"GET","path":"/sign-in")"), std::string::npos) << last;
    EXPECT_TRUE(process().output().awaitText(R"(request {"method":"GET","path":"/sign-in"})", Milliseconds(5000)));
    EXPECT_FALSE(process().output().contains("hush"));
}

TEST_F(WebToolMisbehaviour, EveryWayToEndItIsAnOrderlyEnd)
{
    EXPECT_EQ(command("hang"), "ok");
    const auto hanging = client().send(url("/"));
    EXPECT_EQ(command("await / 1"), "ok");
    EXPECT_EQ(command("quit"), "ok");
    EXPECT_EQ(process().awaitExit(Milliseconds(10000)), 0);
    for (const int signal : { SIGTERM, SIGINT }) {
        start({});
        process().signal(signal);
        EXPECT_EQ(process().awaitExit(Milliseconds(10000)), 0);
        EXPECT_FALSE(std::filesystem::exists(path("control")));
    }
}

}
