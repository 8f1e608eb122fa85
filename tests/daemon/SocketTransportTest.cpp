#include "daemon/SocketTransport.h"

#include "fakes/FakeLocalSockets.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace brevanta {

namespace {

class SocketTransportTest : public testing::Test {
protected:
    std::optional<DaemonFailure> exchange(const Json& request = { { "type", "get_status" } })
    {
        SocketTransport transport("/the/socket", sockets);
        const auto result = transport.exchange(request, reply);
        EXPECT_EQ(sockets.closed, sockets.opened); // On every path.
        return result ? std::nullopt : std::optional(result.error());
    }

    FakeLocalSockets sockets;
    PaddedBuffer reply;
};

DaemonFailure failure(DaemonError::Kind kind) { return DaemonError { kind, {} }; }

}

TEST_F(SocketTransportTest, SendsTheWholeRequestAtOnceAndReceivesAtMost4096BytesAtATime)
{
    sockets.pieces = { std::string(9000, 'x'), "\n" };
    EXPECT_FALSE(exchange());
    EXPECT_EQ(sockets.paths, std::vector<std::string> { "/the/socket" });
    EXPECT_EQ(sockets.timeouts, std::vector<int> { 5 });
    EXPECT_EQ(sockets.sent, std::vector<std::string> { "{\"type\":\"get_status\"}\n" });
    EXPECT_EQ(sockets.receiveSizes, std::vector<std::size_t>(4, 4096));
    EXPECT_EQ(reply.view(), std::string(9000, 'x') + "\n");
}

TEST_F(SocketTransportTest, AShortOrFailedSendIsNeitherContinuedNorAnswered)
{
    for (const std::ptrdiff_t result : { -1, 0, 5, 21 }) { // The request has 22 bytes.
        sockets.sendResult = result;
        sockets.pieces = { "{}\n" };
        sockets.sent.clear();
        EXPECT_EQ(exchange(), failure(DaemonError::Kind::sendFailed)) << result;
        EXPECT_EQ(sockets.sent.size(), 1u);
    }
    EXPECT_TRUE(sockets.receiveSizes.empty());
}

TEST_F(SocketTransportTest, TheReplyEndsWhereAReceivedPieceEndsWithALineFeed)
{
    sockets.pieces = { "{\n\"a\"", ":1\n}", "\n", "of another reply" };
    EXPECT_FALSE(exchange());
    EXPECT_EQ(reply.view(), "{\n\"a\":1\n}\n");
}

TEST_F(SocketTransportTest, ACutReplyIsHandedOnAsItStands)
{
    for (const std::ptrdiff_t end : { 0, -1 }) {
        sockets.endOfPieces = end;
        sockets.pieces = { "{\"a\":", "1" };
        EXPECT_FALSE(exchange());
        EXPECT_EQ(reply.view(), "{\"a\":1");
        sockets.pieces = {};
        EXPECT_FALSE(exchange());
        EXPECT_EQ(reply.view(), ""); // Nothing of the reply before.
    }
}

TEST_F(SocketTransportTest, NobodyThereAndTextThatIsNoUtf8AreTheirOwnErrors)
{
    EXPECT_EQ(describe(*exchange({ { "type", "secret\xFF" } })), "request is not JSON: text is not UTF-8");
    EXPECT_TRUE(sockets.sent.empty());
    sockets.peer = FakeLocalSockets::Peer::absent;
    EXPECT_EQ(exchange(), failure(DaemonError::Kind::connectionFailed));
    EXPECT_EQ(exchange({ { "type", "\xFF" } }), failure(DaemonError::Kind::connectionFailed));
}

TEST_F(SocketTransportTest, APathThatFitsNoAddressIsNotTried)
{
    SocketTransport transport(std::string(104, 'p'), sockets);
    EXPECT_FALSE(transport.exchange({ { "type", "get_status" } }, reply));
    EXPECT_TRUE(sockets.paths.empty());
}

}
