#include "service/ListeningSocket.h"
#include "ServiceTesting.h"

#include <cstring>
#include <fstream>
#include <sys/socket.h>
#include <sys/un.h>

namespace brevanta::service {

// What a killed service leaves behind: a socket file that nobody listens on.
static void leaveStaleSocket(const std::string& path)
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof(address.sun_path));
    std::memcpy(address.sun_path, path.data(), path.size());
    const FileDescriptor descriptor(::socket(AF_UNIX, SOCK_STREAM, 0));
    ASSERT_EQ(::bind(descriptor.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
}

TEST(ListeningSocket, ItsFileLivesAsLongAsIt)
{
    const TemporaryDirectory directory;
    const auto path = directory.file("socket");
    {
        const auto socket = ListeningSocket::open(path);
        ASSERT_TRUE(socket) << socket.error().message;
        EXPECT_TRUE(std::filesystem::is_socket(path));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(ListeningSocket, AStaleSocketIsReplacedButALiveOneIsNot)
{
    const TemporaryDirectory directory;
    const auto path = directory.file("socket");
    leaveStaleSocket(path);
    const auto first = ListeningSocket::open(path);
    ASSERT_TRUE(first) << first.error().message;
    const auto second = ListeningSocket::open(path);
    ASSERT_FALSE(second);
    EXPECT_NE(second.error().message.find("another service is listening"), std::string::npos);
    EXPECT_TRUE(std::filesystem::is_socket(path));
}

TEST(ListeningSocket, AFileThatIsNoSocketIsNeverTouched)
{
    const TemporaryDirectory directory;
    const auto path = directory.file("socket");
    std::ofstream(path) << "keep me";
    EXPECT_FALSE(ListeningSocket::open(path));
    EXPECT_EQ(std::filesystem::file_size(path), 7u);
}

TEST(ListeningSocket, ItDoesNotRemoveTheFileOfASuccessor)
{
    const TemporaryDirectory directory;
    const auto path = directory.file("socket");
    auto first = std::make_unique<ListeningSocket>(ListeningSocket::open(path).value());
    std::filesystem::remove(path);
    const auto second = ListeningSocket::open(path);
    ASSERT_TRUE(second);
    first.reset();
    EXPECT_TRUE(std::filesystem::is_socket(path));
}

TEST(ListeningSocket, APathThatDoesNotFitIsRefused)
{
    for (const auto& path : { std::string(), std::string(200, 'x'), std::string("missing-directory/socket") })
        EXPECT_FALSE(ListeningSocket::open(path)) << path;
}

}
