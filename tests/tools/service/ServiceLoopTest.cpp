#include "service/ServiceLoop.h"
#include "ServiceTesting.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace brevanta::service {

// A client's end of a connection, which never waits: the test turns the loop until there is something.
class Client {
public:
    enum class Standing { open, closed, broken };

    explicit Client(const std::string& path)
        : m_descriptor(::socket(AF_UNIX, SOCK_STREAM, 0))
    {
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.data(), std::min(path.size(), sizeof(address.sun_path) - 1));
        m_isConnected = makeNonBlocking(m_descriptor.get())
            && !::connect(m_descriptor.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    }

    [[nodiscard]] bool isConnected() const { return m_isConnected; }
    void endSending() const { ::shutdown(m_descriptor.get(), SHUT_WR); }
    void leave() { m_descriptor.close(); }

    // How much of the bytes could be sent.
    std::size_t send(std::string_view bytes) const
    {
        const auto size = ::send(m_descriptor.get(), bytes.data(), bytes.size(), 0);
        return size < 0 ? 0 : static_cast<std::size_t>(size);
    }

    void receive()
    {
        char buffer[65536];
        for (;;) {
            const auto size = ::recv(m_descriptor.get(), buffer, sizeof(buffer), 0);
            if (size > 0) {
                m_received.append(buffer, static_cast<std::size_t>(size));
                continue;
            }
            if (!size)
                m_standing = Standing::closed;
            else if (errno != EAGAIN)
                m_standing = Standing::broken;
            return;
        }
    }

    [[nodiscard]] const std::string& received() const { return m_received; }
    [[nodiscard]] Standing standing() const { return m_standing; }

private:
    FileDescriptor m_descriptor;
    bool m_isConnected = false;
    std::string m_received;
    Standing m_standing = Standing::open;
};

class ServiceLoopTest : public testing::Test {
protected:
    void SetUp() override { start(""); }

    void start(const std::string& scenarioText)
    {
        loop.reset();
        loop = std::make_unique<ServiceLoop>(service, Scenario::parse("test", scenarioText).value(),
            ServiceLoop::Options {
                .socketPath = socketPath,
                .controlPath = controlPath,
                .logDetail = LogDetail::redacted,
                .clock = [this] { return now; },
                .print = [this](const std::string& line) { log.push_back(line); },
            });
        const auto started = loop->start();
        ASSERT_TRUE(started) << started.error().message;
    }

    // Local sockets deliver at once, so a few turns bring anything that will come to its end.
    void settle(int turns = 8)
    {
        for (int count = 0; count < turns; ++count)
            ASSERT_TRUE(loop->turn(0));
    }

    std::string exchange(const std::string& request)
    {
        Client client(socketPath);
        client.send(request);
        for (int count = 0; count < 1000 && client.standing() == Client::Standing::open; ++count) {
            settle(1);
            client.receive();
        }
        return client.received();
    }

    std::string command(const std::string& line)
    {
        Client client(controlPath);
        client.send(line + "\n");
        settle();
        client.receive();
        return client.received();
    }

    const std::string status = "{\"type\":\"get_status\"}\n";
    TemporaryDirectory directory;
    std::string socketPath = directory.file("socket");
    std::string controlPath = directory.file("control");
    double now = 0;
    std::vector<std::string> log;
    Service service { testIdentity() };
    std::unique_ptr<ServiceLoop> loop;
};

TEST_F(ServiceLoopTest, ARequestIsAnsweredAndTheConnectionClosed)
{
    EXPECT_EQ(exchange("{\"type\":\"force_sync\"}\n"), "{\"ok\":true}\n");
    EXPECT_EQ(log, (std::vector<std::string> { R"(request {"type":"force_sync"})" }));
}

TEST_F(ServiceLoopTest, ARequestMayArriveInPieces)
{
    Client client(socketPath);
    for (const auto piece : { "{\"type\":", "\"force_", "sync\"}" }) {
        client.send(piece);
        settle();
        client.receive();
        EXPECT_EQ(client.received(), "");
    }
    client.send("\n");
    settle();
    client.receive();
    EXPECT_EQ(client.received(), "{\"ok\":true}\n");
}

TEST_F(ServiceLoopTest, AReplyOfFiveMegabytesArrivesWhole)
{
    EXPECT_EQ(command("list blocked_domains 200000"), "ok\n");
    const auto reply = nlohmann::json::parse(exchange(status));
    EXPECT_EQ(reply["blocked_domains"].size(), 200'000u);
}

TEST_F(ServiceLoopTest, ASilentConnectionHoldsUpNobodyAndEndsWhenItsClientGoes)
{
    command("misbehave silence times 1");
    Client silent(socketPath);
    silent.send(status);
    settle();
    Client idle(socketPath);
    EXPECT_NE(exchange(status), "");
    EXPECT_EQ(command("behave"), "ok\n");
    silent.endSending();
    settle();
    silent.receive();
    EXPECT_EQ(silent.received(), "");
    EXPECT_EQ(silent.standing(), Client::Standing::open);
    EXPECT_EQ(loop->connectionCount(), 2u);
    silent.leave();
    idle.leave();
    settle();
    EXPECT_EQ(loop->connectionCount(), 0u);
}

TEST_F(ServiceLoopTest, ADelayedReplyComesAtItsTimeAndNotBefore)
{
    command("misbehave delay 3000");
    Client client(socketPath);
    client.send(status);
    settle();
    now = 2.999;
    settle();
    client.receive();
    EXPECT_EQ(client.received(), "");
    now = 3;
    settle();
    client.receive();
    EXPECT_TRUE(client.received().ends_with("\n"));
    EXPECT_EQ(client.standing(), Client::Standing::closed);
}

TEST_F(ServiceLoopTest, SegmentsComeOneByOneWithTheirPauses)
{
    command("misbehave segments 5 100");
    Client client(socketPath);
    client.send("{\"type\":\"force_sync\"}\n");
    settle();
    client.receive();
    EXPECT_EQ(client.received(), "{\"ok\"");
    now = 0.1;
    settle();
    client.receive();
    EXPECT_EQ(client.received(), "{\"ok\":true");
    now = 0.2;
    settle();
    client.receive();
    EXPECT_EQ(client.received(), "{\"ok\":true}\n");
    EXPECT_EQ(client.standing(), Client::Standing::closed);
}

TEST_F(ServiceLoopTest, HalfAReplyHangsOrCloses)
{
    command("misbehave half-hang");
    Client hanging(socketPath);
    hanging.send(status);
    settle();
    hanging.receive();
    EXPECT_EQ(hanging.standing(), Client::Standing::open);
    command("misbehave half");
    const auto half = exchange(status);
    EXPECT_EQ(half, hanging.received());
    EXPECT_FALSE(half.empty());
    EXPECT_FALSE(nlohmann::json::accept(half));
}

TEST_F(ServiceLoopTest, AnEarlyCloseLeavesTheRequestUnread)
{
    command("misbehave close-early times 1");
    Client client(socketPath);
    client.send(status);
    settle();
    client.receive();
    EXPECT_NE(client.standing(), Client::Standing::open);
    EXPECT_EQ(client.received(), "");
    EXPECT_EQ(service.requests().countOf("get_status"), 0u);
    EXPECT_NE(exchange(status), "");
}

TEST_F(ServiceLoopTest, ARefusingServiceIsGoneAndBackByTheTimeItsCommandsAreAnswered)
{
    for (int round = 0; round < 2; ++round) {
        Client control(controlPath);
        const auto turnUntilAnswered = [&](const std::string& line, const std::string& answers) {
            control.send(line);
            for (int count = 0; count < 20 && control.received() != answers; ++count) {
                settle(1);
                control.receive();
            }
            EXPECT_EQ(control.received(), answers);
        };
        turnUntilAnswered("misbehave refuse\n", "ok\n");
        EXPECT_FALSE(Client(socketPath).isConnected());
        EXPECT_FALSE(std::filesystem::exists(socketPath));
        turnUntilAnswered("behave\n", "ok\nok\n");
        EXPECT_TRUE(Client(socketPath).isConnected());
    }
}

TEST_F(ServiceLoopTest, ARequestThatIsTooLongIsReadToItsEndAndRefused)
{
    Client client(socketPath);
    const std::string request = std::string(3 * 1024 * 1024, 'x') + "\n";
    std::size_t sent = 0;
    for (int count = 0; count < 1000 && sent < request.size(); ++count) {
        sent += client.send(std::string_view(request).substr(sent));
        settle(1);
    }
    ASSERT_EQ(sent, request.size());
    settle();
    client.receive();
    EXPECT_EQ(client.received(), "{\"error\":\"request too long\"}\n");
}

TEST_F(ServiceLoopTest, ClientsThatLeaveInTheMiddleDoNoHarm)
{
    command("list blocked_domains 200000");
    Client(socketPath).leave();
    {
        Client partial(socketPath);
        partial.send("{\"type\":");
    }
    {
        Client unread(socketPath);
        unread.send(status);
        settle(2);
    }
    settle();
    EXPECT_EQ(exchange("{\"type\":\"force_sync\"}\n"), "{\"ok\":true}\n");
}

TEST_F(ServiceLoopTest, ARequestThatEndsWithoutANewlineIsRefused)
{
    Client client(socketPath);
    client.send("{\"type\":\"force_sync\"}");
    client.endSending();
    settle();
    client.receive();
    EXPECT_EQ(client.received(), "{\"error\":\"request without a newline\"}\n");
}

TEST_F(ServiceLoopTest, CommandsOfOneConnectionAreAnsweredInTheirOrder)
{
    EXPECT_EQ(command("energy 7\nget energy\nfly\nget energy"),
        "ok\nok 7.0\nerror: unknown command 'fly' (see help)\nok 7.0\n");
}

TEST_F(ServiceLoopTest, AnAwaitingCommandIsAnsweredByTheRequestAndHoldsUpNobody)
{
    Client waiting(controlPath);
    waiting.send("await get_status +1\nget energy\n");
    settle();
    waiting.receive();
    EXPECT_EQ(waiting.received(), "");
    EXPECT_EQ(command("get energy"), "ok 50.0\n");
    exchange(status);
    settle();
    waiting.receive();
    EXPECT_EQ(waiting.received(), "ok 1\nok 50.0\n");
}

TEST_F(ServiceLoopTest, ScenarioStepsCountFromTheirOwnTimeHoweverLateTheTurn)
{
    start("energy 100\nat 10 drain 1\nat 20 drain 0\n");
    settle();
    now = 25.5;
    EXPECT_EQ(command("get energy"), "ok 90.0\n");
}

TEST_F(ServiceLoopTest, TheQuitDescriptorEndsTheRun)
{
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const FileDescriptor readEnd(ends[0]);
    const FileDescriptor writeEnd(ends[1]);
    loop->quitWhenReadable(readEnd.get());
    ASSERT_EQ(::write(writeEnd.get(), "x", 1), 1);
    EXPECT_TRUE(loop->run());
    loop.reset();
    EXPECT_FALSE(std::filesystem::exists(socketPath));
    EXPECT_FALSE(std::filesystem::exists(controlPath));
}

TEST_F(ServiceLoopTest, CommandsOfAPipeAreAllAnsweredThoughItEndsWhileOneAwaits)
{
    int input[2];
    int output[2];
    ASSERT_EQ(::pipe(input), 0);
    ASSERT_EQ(::pipe(output), 0);
    FileDescriptor commands(input[1]);
    const FileDescriptor answers(output[0]);
    loop->addCommandChannel(FileDescriptor(input[0]), FileDescriptor(output[1]));
    constexpr std::string_view first = "await get_status 1\n";
    ASSERT_EQ(::write(commands.get(), first.data(), first.size()), static_cast<ssize_t>(first.size()));
    settle();
    constexpr std::string_view second = "get energy\nquit";
    ASSERT_EQ(::write(commands.get(), second.data(), second.size()), static_cast<ssize_t>(second.size()));
    commands.close();
    settle();
    EXPECT_FALSE(service.isQuitting());

    exchange(status);
    EXPECT_TRUE(loop->run());
    char buffer[64];
    const auto size = ::read(answers.get(), buffer, sizeof(buffer));
    ASSERT_GT(size, 0);
    EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(size)), "ok 1\nok 50.0\nok\n");
}

TEST_F(ServiceLoopTest, AControlConnectionThatGoesWhileItAwaitsIsDropped)
{
    // More than may be connected at once.
    for (int count = 0; count < 50; ++count) {
        Client control(controlPath);
        control.send("await get_status 1\n");
        settle(3);
    }
    EXPECT_EQ(command("get energy"), "ok 50.0\n");
}

}
