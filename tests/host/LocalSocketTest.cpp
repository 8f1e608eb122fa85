#include "functional/support/TemporaryDirectory.h"
#include "posix/FileDescriptor.h"
#include "posix/LocalSocketPosix.h"
#include "posix/ThreadSignals.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <vector>

namespace brevanta {

namespace {

constexpr int patientSeconds = 60; // Longer than any of these tests may take.
constexpr auto promptly = std::chrono::seconds(10);

FileDescriptor listenAt(const std::string& path, int backlog)
{
    FileDescriptor listener(::socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    std::ranges::copy(path, address.sun_path);
    EXPECT_EQ(::bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    EXPECT_EQ(::listen(listener.get(), backlog), 0);
    return listener;
}

FileDescriptor acceptFrom(const FileDescriptor& listener)
{
    return FileDescriptor(::accept(listener.get(), nullptr, nullptr));
}

class LocalSocketTest : public testing::Test {
protected:
    LocalSocketTest() { ignoreBrokenPipeSignal(); }

    // A path of exactly so many bytes in the test's folder.
    [[nodiscard]] std::string pathOfLength(std::size_t length) const
    {
        auto path = m_folder.path().string() + '/';
        path.resize(length, 's');
        return path;
    }

    functional::TemporaryDirectory m_folder;
    std::string m_path { (m_folder.path() / "socket").string() };
    LocalSocketPosix m_sockets;
};

}

TEST_F(LocalSocketTest, CarriesBytesBothWaysAndThenTheEndOfTheStream)
{
    const auto listener = listenAt(m_path, 1);
    const auto connection = m_sockets.connect(m_path, patientSeconds);
    ASSERT_TRUE(connection);
    auto peer = acceptFrom(listener);

    const std::string request("ask\0\n", 5);
    EXPECT_EQ(connection->send(request), 5);
    std::array<char, 16> buffer {};
    ASSERT_EQ(::recv(peer.get(), buffer.data(), buffer.size(), 0), 5);
    EXPECT_EQ(std::string(buffer.data(), 5), request);

    ASSERT_EQ(::send(peer.get(), "answer", 6, 0), 6);
    EXPECT_EQ(connection->receive(std::span(buffer).first(4)), 4);
    EXPECT_EQ(connection->receive(buffer), 2);
    peer.reset();
    EXPECT_EQ(connection->receive(buffer), 0);
}

TEST_F(LocalSocketTest, ClosesTheConnectionWithItsObject)
{
    const auto listener = listenAt(m_path, 1);
    auto connection = m_sockets.connect(m_path, patientSeconds);
    const auto peer = acceptFrom(listener);
    connection.reset();
    char byte = 0;
    EXPECT_EQ(::recv(peer.get(), &byte, 1, 0), 0);
}

TEST_F(LocalSocketTest, RefusesWhatIsNoListeningSocket)
{
    EXPECT_FALSE(m_sockets.connect(m_path, patientSeconds)) << "nothing at the path";
    EXPECT_FALSE(m_sockets.connect(m_folder.path().string(), patientSeconds)) << "a folder";
    EXPECT_FALSE(m_sockets.connect("", patientSeconds)) << "an empty path";
    listenAt(m_path, 1).reset();
    EXPECT_FALSE(m_sockets.connect(m_path, patientSeconds)) << "a socket that nobody listens at any more";
}

TEST_F(LocalSocketTest, DoesNotCutAPathAtANul)
{
    const auto listener = listenAt(m_path, 1);
    EXPECT_FALSE(m_sockets.connect(m_path + '\0' + "tail", patientSeconds));
}

TEST_F(LocalSocketTest, TakesAPathOf103BytesAndNoLongerOne)
{
    const auto longest = pathOfLength(103);
    const auto listener = listenAt(longest, 2);
    EXPECT_TRUE(m_sockets.connect(longest, patientSeconds));

    // Linux itself has room for 107 bytes, so that only the connector's own limit refuses this one.
    const auto tooLong = pathOfLength(104);
    const auto tooLongListener = listenAt(tooLong, 2);
    EXPECT_FALSE(m_sockets.connect(tooLong, patientSeconds));
}

TEST_F(LocalSocketTest, IsRefusedAtOnceByAServiceThatAcceptsNothingAndHasNoRoomLeft)
{
    const auto listener = listenAt(m_path, 0);
    const auto begin = std::chrono::steady_clock::now();
    std::vector<std::unique_ptr<LocalConnection>> waiting;
    for (int attempt = 0; attempt < 100; ++attempt) {
        auto connection = m_sockets.connect(m_path, patientSeconds);
        if (!connection)
            break;
        waiting.push_back(std::move(connection));
    }
    EXPECT_LT(waiting.size(), 100U);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, promptly);
}

TEST_F(LocalSocketTest, WaitsForASlowAnswerAfterAConnectThatDidNotWait)
{
    const auto listener = listenAt(m_path, 1);
    const auto connection = m_sockets.connect(m_path, patientSeconds);
    std::thread service([&listener] {
        const auto peer = acceptFrom(listener);
        char request = 0;
        EXPECT_EQ(::recv(peer.get(), &request, 1, 0), 1);
        EXPECT_EQ(::send(peer.get(), "!", 1, 0), 1);
    });
    EXPECT_EQ(connection->send(std::string_view("?")), 1);
    char answer = 0;
    EXPECT_EQ(connection->receive({ &answer, 1 }), 1);
    service.join();
}

TEST_F(LocalSocketTest, GivesUpReceivingAndSendingWhenTheTimeIsUp)
{
    const auto listener = listenAt(m_path, 1);
    const auto connection = m_sockets.connect(m_path, 1);
    std::array<char, 16> buffer {};
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_LT(connection->receive(buffer), 0);
    const auto waited = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(waited, std::chrono::milliseconds(900));
    EXPECT_LT(waited, promptly);

    const std::vector<char> moreThanTheSocketHolds(64UL * 1024 * 1024, 'x');
    const auto sent = connection->send(moreThanTheSocketHolds);
    EXPECT_LT(sent, static_cast<std::ptrdiff_t>(moreThanTheSocketHolds.size()));
}

TEST_F(LocalSocketTest, ReportsAPeerThatHasGoneWithoutASignal)
{
    auto listener = listenAt(m_path, 1);
    const auto connection = m_sockets.connect(m_path, patientSeconds);
    acceptFrom(listener).reset();
    EXPECT_LT(connection->send(std::string_view("?")), 0);
}

TEST_F(LocalSocketTest, IsNotInheritedByOtherPrograms)
{
    const auto listener = listenAt(m_path, 1);
    const FileDescriptor lowestFree(::dup(listener.get()));
    const auto next = ::dup(listener.get()); // The number that the connection's socket is going to have.
    ::close(next);
    const auto connection = m_sockets.connect(m_path, patientSeconds);
    ASSERT_TRUE(connection);
    EXPECT_EQ(::fcntl(next, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(LocalSocketTest, InterruptEndsABlockedReceivePromptlyAndRefusesLaterConnects)
{
    const auto listener = listenAt(m_path, 2);
    const auto connection = m_sockets.connect(m_path, patientSeconds);
    const auto peer = acceptFrom(listener);
    std::ptrdiff_t received = 1;
    const auto begin = std::chrono::steady_clock::now();
    std::thread receiver([&] {
        char byte = 0;
        EXPECT_EQ(connection->send(std::string_view("?")), 1);
        received = connection->receive({ &byte, 1 });
    });
    char request = 0;
    ASSERT_EQ(::recv(peer.get(), &request, 1, 0), 1); // The receiver is about to block, or blocks.
    m_sockets.interrupt();
    receiver.join();
    EXPECT_LE(received, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, promptly);

    EXPECT_FALSE(m_sockets.connect(m_path, patientSeconds));
    LocalSocketPosix other;
    EXPECT_TRUE(other.connect(m_path, patientSeconds)) << "another connector is not concerned";
}

TEST_F(LocalSocketTest, InterruptLeavesTheFilesAloneThatTookAClosedConnectionsNumber)
{
    const auto listener = listenAt(m_path, 1);
    m_sockets.connect(m_path, patientSeconds).reset();
    std::array<int, 2> pair {};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, pair.data()), 0);
    const FileDescriptor here(pair[0]);
    const FileDescriptor there(pair[1]);
    m_sockets.interrupt();
    EXPECT_EQ(::send(here.get(), "x", 1, 0), 1);
    char byte = 0;
    EXPECT_EQ(::recv(there.get(), &byte, 1, 0), 1);
}

TEST_F(LocalSocketTest, AConnectionOutlivesItsConnector)
{
    const auto listener = listenAt(m_path, 1);
    auto connector = std::make_unique<LocalSocketPosix>();
    const auto connection = connector->connect(m_path, patientSeconds);
    connector.reset();
    EXPECT_EQ(connection->send(std::string_view("?")), 1);
}

}
