#include "bench/Replies.h"

#include <cstdlib>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace brevanta::bench {

namespace {

constexpr std::size_t receiveSize = 4096;

}

std::string replyWith(std::size_t entries, int variant)
{
    std::string reply = R"({"energy":12.)" + std::to_string(variant)
        + R"(,"should_block":true,"auth_token":"token","blocked_domains":[)";
    for (std::size_t index = 0; index < entries; ++index)
        reply += (index ? ",\"a" : "\"a") + std::to_string(variant) + '.' + std::to_string(1'000'000 + index)
            + ".example.org\"";
    return reply + "]}\n";
}

void receive(std::string_view reply, PaddedBuffer& into)
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
        std::abort();
    std::thread sender([rest = reply, to = ends[1]]() mutable {
        while (!rest.empty()) {
            const auto sent = ::send(to, rest.data(), rest.size(), 0);
            if (sent <= 0)
                std::abort();
            rest.remove_prefix(static_cast<std::size_t>(sent));
        }
    });
    into.clear();
    do {
        const auto received = ::recv(ends[0], into.writableTail(receiveSize).data(), receiveSize, 0);
        if (received <= 0)
            std::abort();
        into.commit(static_cast<std::size_t>(received));
    } while (into.view().back() != '\n');
    sender.join();
    ::close(ends[0]);
    ::close(ends[1]);
}

}
