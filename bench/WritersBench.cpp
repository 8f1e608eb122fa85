// What is written of a status, against a memcpy of the same bytes.
#include "bench/Measure.h"
#include "bench/Replies.h"
#include "bench/Reports.h"
#include "daemon/BlockingStatusDecoder.h"
#include "daemon/SharedBlockState.h"
#include "web/PageScripts.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

namespace brevanta::bench {

namespace {

void reportWriter(const char* what, std::size_t entries, const std::function<void(std::string&)>& append)
{
    std::string out;
    append(out);
    const std::string expected = out;
    std::vector<char> copy(expected.size());
    const auto seconds = measureBoth(
        [&] {
            out.clear();
            append(out);
        },
        [&] { std::memcpy(copy.data(), expected.data(), expected.size()); });
    printRow(what, entries, seconds, entries >= 200'000 ? "at most 2" : "");
    if (std::memcmp(copy.data(), out.data(), expected.size()) != 0)
        std::abort();
}

}

void reportWriters(std::size_t entries)
{
    PaddedBuffer reply;
    reply.assign(replyWith(entries));
    const auto status = BlockingStatusDecoder().decode(reply).value();
    reportWriter("serialise the shared state / memcpy", entries,
        [&](std::string& out) { appendSharedBlockState(out, sharedBlockState(*status)); });
    reportWriter("make the page's script / memcpy", entries,
        [&](std::string& out) { PageScripts::appendBlockingStatus(out, *status); });
}

}
