// Decoding a reply, against a typed on-demand walk of it that stores nothing.
#include "bench/Measure.h"
#include "bench/Replies.h"
#include "bench/Reports.h"
#include "daemon/BlockingStatusDecoder.h"

namespace brevanta::bench {

namespace {

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

}

void reportDecoding(std::size_t entries)
{
    PaddedBuffer reply;
    reply.assign(replyWith(entries));
    (void)reply.writableTail(simdjson::SIMDJSON_PADDING); // The walk wants its padding within the capacity.

    simdjson::ondemand::parser walker;
    volatile std::size_t sink = 0;
    BlockingStatusDecoder decoder;
    std::shared_ptr<const BlockingStatus> status;
    const auto seconds
        = measureBoth([&] { status = decoder.decode(reply).value(); }, [&] { sink = walk(walker, reply); });
    printRow("decode a reply / walk it", entries, seconds, entries >= 20'000 ? "at most 1.5" : "");
}

}
