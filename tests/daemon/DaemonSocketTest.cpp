#include "base/SerialQueue.h"
#include "daemon/DaemonClient.h"
#include "daemon/ScriptedServer.h"
#include "daemon/SocketTransport.h"
#include "fakes/FakeMainLoop.h"
#include "posix/LocalSocketPosix.h"
#include "posix/ThreadSignals.h"
#include "support/StatusReply.h"

#include <chrono>
#include <filesystem>
#include <future>
#include <gtest/gtest.h>

namespace brevanta {

namespace {

using Peer = ScriptedServer::Peer;

class DaemonSocketTest : public testing::Test {
protected:
    DaemonSocketTest() { ignoreBrokenPipeSignal(); }

    std::unique_ptr<DaemonClient> clientFor(const std::string& path)
    {
        return std::make_unique<DaemonClient>(std::make_unique<SocketTransport>(path, sockets), queue, mainLoop);
    }

    // What a status request to the server comes to.
    DecodedStatus statusFrom(const std::function<void(const Peer&)>& serve)
    {
        const ScriptedServer server(serve);
        return statusAt(server.path());
    }

    DecodedStatus statusAt(const std::string& path)
    {
        const auto client = clientFor(path);
        std::optional<DecodedStatus> answer;
        client->getStatus(std::nullopt, [&](const auto& result) { answer = result; });
        while (!answer)
            mainLoop.awaitPosted();
        return *answer;
    }

    FakeClock clock;
    FakeMainLoop mainLoop { clock };
    LocalSocketPosix sockets;
    SerialQueue queue { blockAllSignals };
};

// A status reply of exactly this many bytes, its line feed included.
std::string replyOfSize(std::size_t size)
{
    std::string reply = statusReply({ { "api_base_url", "" } }).dump() + "\n";
    return reply.insert(reply.find("\"api_base_url\":\"") + 16, std::string(size - reply.size(), 'x'));
}

const DaemonFailure connectionFailed = DaemonError { DaemonError::Kind::connectionFailed, {} };

}

TEST_F(DaemonSocketTest, ARequestIsOneObjectAndOneLineFeed)
{
    std::promise<std::string> request;
    const auto status = statusFrom([&](const Peer& peer) {
        request.set_value(peer.readRequest());
        peer.write(statusReply().dump() + "\n");
    });
    EXPECT_EQ(request.get_future().get(), "{\"type\":\"get_status\"}\n");
    ASSERT_TRUE(status);
    EXPECT_EQ((*status)->energy, 3);
}

TEST_F(DaemonSocketTest, AReplyOfAnySizeIsWholeAtItsFinalLineFeedWhileTheConnectionStaysOpen)
{
    // 4096 bytes are what one receive takes: the reply is complete after exactly one, or just over one.
    for (const std::size_t size : { 100UZ, 4095UZ, 4096UZ, 4097UZ, 8192UZ }) {
        const auto status = statusFrom([&](const Peer& peer) {
            (void)peer.readRequest();
            peer.write(replyOfSize(size));
            peer.waitForClose();
        });
        ASSERT_TRUE(status) << size;
        EXPECT_EQ((*status)->apiBaseUrl->size() + statusReply({ { "api_base_url", "" } }).dump().size() + 1, size);
    }
}

TEST_F(DaemonSocketTest, ALargeReplyInOddSegmentsIsAssembled)
{
    constexpr std::size_t entries = 200'000;
    Json domains = Json::array();
    for (std::size_t index = 0; index < entries; ++index)
        domains.push_back("blocked-" + std::to_string(index) + ".example.org");
    const auto bytes = statusReply({ { "blocked_domains", domains } }).dump() + "\n";
    ASSERT_GT(bytes.size(), 5'000'000u);

    const auto status = statusFrom([&](const Peer& peer) {
        (void)peer.readRequest();
        std::string_view rest = bytes;
        for (std::size_t size = 1; !rest.empty(); size = size * 7 % 10007 + 1) {
            if (!peer.write(rest.substr(0, size)))
                return;
            rest.remove_prefix(std::min(size, rest.size()));
        }
        peer.waitForClose();
    });
    ASSERT_TRUE(status);
    ASSERT_EQ((*status)->blockedDomains.size(), entries);
    EXPECT_EQ((*status)->blockedDomains.back(), "blocked-199999.example.org");
}

TEST_F(DaemonSocketTest, SilenceEndsAfterFiveSecondsWithWhatHadArrived)
{
    const std::string whole = statusReply().dump();
    struct Case {
        std::string arrived; // Without the line feed that would end the reply.
        bool decodes;
    };
    const Case cases[] = { { "", false }, { whole.substr(0, whole.size() / 2), false }, { whole, true } };

    // All at once, since each takes its five seconds.
    const auto begin = std::chrono::steady_clock::now();
    std::vector<std::future<void>> runs;
    for (const auto& [arrived, decodes] : cases) {
        runs.push_back(std::async(std::launch::async, [this, &arrived, decodes] {
            const ScriptedServer server([&](const Peer& peer) {
                (void)peer.readRequest();
                peer.write(arrived);
                peer.waitForClose();
            });
            SocketTransport transport(server.path(), sockets);
            PaddedBuffer reply;
            EXPECT_TRUE(transport.exchange({ { "type", "get_status" } }, reply));
            EXPECT_EQ(reply.view(), arrived);
            EXPECT_EQ(decodeStatus(reply.view()).has_value(), decodes);
        }));
    }
    for (auto& run : runs)
        run.get();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(took.count(), 4.9);
    EXPECT_LT(took.count(), 8);
}

TEST_F(DaemonSocketTest, APathOf103BytesConnectsAndOneOf104IsNotTried)
{
    const ScriptedServer server([](const Peer& peer) {
        (void)peer.readRequest();
        peer.write(statusReply().dump() + "\n");
    });
    // Slashes that say nothing make the path as long as is needed.
    const auto padded = [&](std::size_t size) {
        std::string path = server.path();
        return path.insert(path.rfind('/'), size - path.size(), '/');
    };
    ASSERT_TRUE(std::filesystem::exists(padded(104)));
    EXPECT_TRUE(statusAt(padded(103)));
    EXPECT_EQ(statusAt(padded(104)), DecodedStatus(std::unexpect, connectionFailed));
    EXPECT_EQ(statusAt(server.path() + "-nobody"), DecodedStatus(std::unexpect, connectionFailed));
}

TEST_F(DaemonSocketTest, AServiceThatClosesBeforeItReadsFailsTheSendWithoutASignal)
{
    // Whether the send or the receive notices first is the kernel's choice; neither may end the process.
    for (int round = 0; round < 20; ++round) {
        const auto status = statusFrom([](const Peer&) { });
        ASSERT_FALSE(status);
    }
}

TEST_F(DaemonSocketTest, InterruptingEndsAnExchangeThatASilentServiceHolds)
{
    std::promise<void> asked;
    const ScriptedServer server([&](const Peer& peer) {
        if (peer.readRequest().empty())
            return; // A connection that was refused after all.
        asked.set_value();
        peer.waitForClose();
    });
    const auto client = clientFor(server.path());
    std::optional<DecodedStatus> answer;
    const auto begin = std::chrono::steady_clock::now();
    client->getStatus(std::nullopt, [&](const auto& result) { answer = result; });
    asked.get_future().wait();
    sockets.interrupt();
    while (!answer)
        mainLoop.awaitPosted();
    EXPECT_FALSE(answer->has_value());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
    EXPECT_EQ(statusAt(server.path()), DecodedStatus(std::unexpect, connectionFailed));
}

}
