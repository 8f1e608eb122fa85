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
    reader.read("refusals", standIn.refusals);
    ServiceProcess process;
    reader.read("pid", process.processId);
    reader.read("startTicks", process.startTicks);
    if ((process.processId > 0) != (process.startTicks > 0))
        return standInError("has only one of pid and startTicks");
    if (process.processId > 0)
        standIn.process = process;
    return reader.endWith(standIn);
}

std::string encode(const ServiceStandIn& standIn)
{
    nlohmann::json value { { "loaded", standIn.isLoaded },
        { "backgroundItem", nameOf(backgroundItemNames, standIn.backgroundItem) } };
    if (standIn.refusals > 0)
        value["refusals"] = standIn.refusals;
    if (standIn.process) {
        value["pid"] = standIn.process->processId;
        value["startTicks"] = standIn.process->startTicks;
    }
    return standInText(value);
}

}
