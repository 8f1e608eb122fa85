#include "gtk/standin/ServiceStandIn.h"

#include "gtk/standin/MemberReader.h"

namespace brevanta {

std::expected<ServiceStandIn, StandInError> decodeServiceStandIn(std::string_view text)
{
    const auto value = parseStandIn(text);
    if (!value)
        return std::unexpected(value.error());
    ServiceStandIn standIn;
    MemberReader reader(*value);
    reader.read("loaded", standIn.isLoaded);
    reader.read("backgroundItem", backgroundItemNames, standIn.backgroundItem);
    return reader.endWith(standIn);
}

std::string encode(const ServiceStandIn& standIn)
{
    return standInText(
        { { "loaded", standIn.isLoaded }, { "backgroundItem", nameOf(backgroundItemNames, standIn.backgroundItem) } });
}

}
