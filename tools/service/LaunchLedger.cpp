#include "service/LaunchLedger.h"

#include "service/FileReplacement.h"
#include "service/JsonText.h"

#include <fstream>
#include <iterator>

namespace brevanta::service {

static constexpr std::uint64_t largestOrder = (std::uint64_t(1) << 53) - 1;

static std::expected<std::uint64_t, ServiceError> readLastOrder(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open())
        return 0;
    const std::string text { std::istreambuf_iterator<char>(file), {} };
    const auto state = parseJson(text);
    if (!state || !state->is_object() || !state->contains("launch_order"))
        return fail(path + ": is not a state file");
    const auto& order = state->at("launch_order");
    if (!order.is_number_unsigned() || order.get<std::uint64_t>() >= largestOrder)
        return fail(path + ": its launch_order is not usable");
    return order.get<std::uint64_t>();
}

std::expected<std::uint64_t, ServiceError> takeNextLaunchOrder(const std::string& path)
{
    const auto last = readLastOrder(path);
    if (!last)
        return last;
    const auto order = *last + 1;
    if (const auto written = replaceFile(path, jsonText({ { "launch_order", order } }) + "\n"); !written)
        return std::unexpected(written.error());
    return order;
}

}
