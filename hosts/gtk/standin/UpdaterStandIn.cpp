#include "gtk/standin/UpdaterStandIn.h"

#include "gtk/standin/MemberReader.h"

namespace brevanta {

std::expected<UpdaterStandIn, StandInError> decodeUpdaterStandIn(std::string_view text)
{
    const auto value = parseStandIn(text);
    if (!value)
        return std::unexpected(value.error());
    UpdaterStandIn standIn;
    MemberReader reader(*value);
    reader.read("automaticChecks", standIn.checksAutomatically);
    reader.read("offered", standIn.offered);
    if (standIn.offered && standIn.offered->empty())
        return standInError("offers a version without a name");
    return reader.endWith(std::move(standIn));
}

std::string encode(const UpdaterStandIn& standIn)
{
    nlohmann::json value { { "automaticChecks", standIn.checksAutomatically } };
    if (standIn.offered)
        value["offered"] = *standIn.offered;
    return standInText(value);
}

}
