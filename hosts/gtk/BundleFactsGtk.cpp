#include "gtk/BundleFactsGtk.h"

#include "gtk/PropertyListGtk.h"
#include "posix/AppLocation.h"

#include <cstdio>
#include <cstdlib>
#include <glib.h>

namespace brevanta {

namespace {

std::optional<std::string> textIn(const std::filesystem::path& file, std::string_view key)
{
    const auto texts = readPropertyList(file);
    const auto found = texts ? texts->find(key) : PropertyListTexts::const_iterator {};
    return texts && found != texts->end() ? std::optional(found->second) : std::nullopt;
}

}

std::filesystem::path executablePath()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error); // proc(5)
}

std::filesystem::path bundleContents() { return executablePath().parent_path().parent_path(); }

std::optional<std::string> environmentVariable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

BuildConfiguration configurationOfBundle()
{
    auto configuration = buildConfiguration(environmentVariable, executablePath());
    configuration.crashEndpoint = textInBundle("BrevantaCrashEndpoint").value_or("");
    return configuration;
}

std::optional<std::string> textInBundle(std::string_view key) { return textIn(bundleContents() / "Info.plist", key); }

std::filesystem::path homeFolder(const BuildConfiguration& configuration)
{
    return configuration.root == "/" ? std::filesystem::path(g_get_home_dir())
                                     : configuration.root / "Users" / g_get_user_name();
}

std::filesystem::path preferencesFile(const BuildConfiguration& configuration)
{
    return homeFolder(configuration) / "Library/Preferences" / (configuration.bundleIdentifier + ".json");
}

std::filesystem::path autostartFolder(const BuildConfiguration& configuration)
{
    return homeFolder(configuration) / ".config/autostart";
}

AppLocationPolicy::Context location(const BuildConfiguration& configuration)
{
    return appLocation(bundleContents().parent_path(), configuration.root / "Applications",
        homeFolder(configuration) / "Applications");
}

SystemVersion systemVersion(const BuildConfiguration& configuration)
{
    const auto text = textIn(configuration.root / "System/Library/CoreServices/SystemVersion.plist", "ProductVersion");
    SystemVersion parsed { .major = 15, .minor = 0, .patch = 0 };
    if (text)
        std::sscanf(text->c_str(), "%d.%d.%d", &parsed.major, &parsed.minor, &parsed.patch);
    return parsed;
}

std::filesystem::path sharedContainer(const std::filesystem::path& home)
{
    return home / "Library/Group Containers/group.com.brevanta.shared";
}

std::vector<std::string> systemLanguages()
{
    std::vector<std::string> languages;
    for (const char* const* name = g_get_language_names(); *name; ++name)
        languages.emplace_back(*name);
    return languages;
}

}
