#include "app/AppLocationPolicy.h"

#include <algorithm>
#include <ranges>
#include <string>
#include <vector>

namespace brevanta::AppLocationPolicy {

namespace {

using Components = std::vector<std::string>;

Components componentsOf(const std::filesystem::path& path)
{
    Components components;
    for (const auto& component : path.lexically_normal()) {
        if (!component.empty()) // What stands behind a slash at the end.
            components.push_back(component.string());
    }
    return components;
}

// How many components below the folder the other one lies; nothing when it is the folder itself or not in it.
std::optional<std::size_t> depthBelow(const Components& folder, const Components& other)
{
    if (folder.empty() || other.size() <= folder.size()
        || !std::ranges::equal(folder, other | std::views::take(folder.size())))
        return std::nullopt;
    return other.size() - folder.size();
}

}

std::optional<IneligibleReason> classify(const Context& context)
{
    const auto bundle = componentsOf(context.resolvedBundleURL);
    const auto depth = depthBelow(componentsOf(context.resolvedSystemApplicationsURL), bundle);
    if (depth == 1)
        return std::nullopt;
    if (context.resolvedBundleURL.lexically_normal().string().contains("/AppTranslocation/"))
        return IneligibleReason::translocated;
    if (context.volumeIsReadOnly == true)
        return IneligibleReason::readOnlyVolume;
    if (context.resolvedUserApplicationsURL && depthBelow(componentsOf(*context.resolvedUserApplicationsURL), bundle))
        return IneligibleReason::userApplications;
    return depth ? IneligibleReason::nestedBundle : IneligibleReason::elsewhere;
}

std::string_view message(IneligibleReason reason)
{
    switch (reason) {
    case IneligibleReason::translocated:
    case IneligibleReason::readOnlyVolume:
        return "Brevanta needs to be installed in this Mac's Applications folder to set up its content filter. Drag "
               "Brevanta from the disk image to Applications, then open it from there.";
    case IneligibleReason::userApplications:
        return "Brevanta needs to be installed in this Mac's Applications folder to set up its content filter. Move "
               "Brevanta from your personal Applications folder to the main Applications folder, then open it from "
               "there.";
    case IneligibleReason::nestedBundle:
        return "Brevanta needs to be installed in this Mac's Applications folder to set up its content filter. Move "
               "Brevanta out of the folder it is in, directly into Applications, then open it from there.";
    case IneligibleReason::elsewhere:
        break;
    }
    return "Brevanta needs to be installed in this Mac's Applications folder to set up its content filter. Move "
           "Brevanta to Applications, then open it from there.";
}

std::string_view name(IneligibleReason reason)
{
    switch (reason) {
    case IneligibleReason::translocated:
        return "translocated";
    case IneligibleReason::readOnlyVolume:
        return "readOnlyVolume";
    case IneligibleReason::userApplications:
        return "userApplications";
    case IneligibleReason::nestedBundle:
        return "nestedBundle";
    case IneligibleReason::elsewhere:
        break;
    }
    return "elsewhere";
}

}
