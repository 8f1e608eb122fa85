// What a status reply costs, as ratios to a floor that is measured in the same run: absolute times drift between
// machines. The floors: a typed on-demand walk that stores nothing ("walk"), and receiving the reply over a socket pair
// into a kept buffer and comparing it with the last one ("receive + compare").

#include "daemon/BlockingStatusDecoder.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace brevanta;

constexpr int rounds = 15;
constexpr std::size_t receiveSize = 4096;

std::string replyWith(std::size_t entries)
{
    std::string reply = R"({"should_block":true,"energy":12.5,"auth_token":"token","blocked_domains":[)";
    for (std::size_t index = 0; index < entries; ++index)
        reply += (index ? ",\"" : "\"") + std::to_string(1'000'000 + index) + ".example.org\"";
    return reply + "]}\n";
}

// The best of several rounds, in seconds.
double measure(const std::function<void()>& work)
{
    double best = 1e9;
    for (int round = 0; round < rounds; ++round) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    return best;
}

std::size_t walk(simdjson::ondemand::parser& parser, const PaddedBuffer& reply)
{
    std::size_t bytes = 0;
    auto document = parser.iterate(reply.view().data(), reply.view().size(), reply.capacity());
    for (auto field : document.get_object()) {
        simdjson::ondemand::value value;
        if (field.value().get(value) != simdjson::SUCCESS)
            return 0;
        if (value.type() == simdjson::ondemand::json_type::array) {
            for (auto entry : value.get_array())
                bytes += entry.get_string().value().size();
        } else if (value.type() == simdjson::ondemand::json_type::string) {
            bytes += value.get_string().value().size();
        } else if (value.type() == simdjson::ondemand::json_type::number) {
            bytes += value.get_double().value() > 0;
        } else {
            bytes += value.get_bool().value();
        }
    }
    return bytes;
}

// Receives the reply from a thread that sends it, as the client does.
void receive(const std::string& reply, PaddedBuffer& into)
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
        std::abort();
    std::thread sender([&] {
        std::string_view rest = reply;
        while (!rest.empty()) {
            const auto sent = ::send(ends[1], rest.data(), rest.size(), 0);
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

void report(std::size_t entries)
{
    const auto text = replyWith(entries);
    PaddedBuffer reply;
    reply.assign(text);
    (void)reply.writableTail(simdjson::SIMDJSON_PADDING); // The walk wants its padding within the capacity.

    simdjson::ondemand::parser walker;
    volatile std::size_t sink = 0;
    const double walked = measure([&] { sink = walk(walker, reply); });
    BlockingStatusDecoder decoder;
    std::shared_ptr<const BlockingStatus> status;
    const double decoded = measure([&] { status = decoder.decode(reply).value(); });

    PaddedBuffer received;
    const double floor = measure([&] {
        receive(text, received);
        sink = static_cast<std::size_t>(received.view() == reply.view());
    });
    std::printf("%8zu %9zu %10.3f %10.3f %8.2f %12.3f %10.3f\n", entries, text.size(), walked * 1e3, decoded * 1e3,
        decoded / walked, floor * 1e3, (floor + decoded) / floor);
}

}

int main()
{
    std::printf("%8s %9s %10s %10s %8s %12s %10s\n", "entries", "bytes", "walk ms", "decode ms", "ratio", "recv+cmp ms",
        "changed/r+c");
    for (const std::size_t entries : { std::size_t { 1'000 }, std::size_t { 20'000 }, std::size_t { 200'000 } })
        report(entries);
}
