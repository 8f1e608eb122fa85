#pragma once

#include "app/AppLocationPolicy.h"
#include "app/BuildConfiguration.h"

#import <Foundation/Foundation.h>

#include <filesystem>
#include <optional>
#include <string>

namespace brevanta {

// The configuration of this build, with the version, the identifier and the endpoint of crash reports that the
// application bundle states where there is one (documentation pages NSBundle and "Information Property List"). Needs no
// application object.
BuildConfiguration configurationOfMainBundle();

// The text under this key of the bundle's information dictionary; nothing where there is none, or another kind of
// value.
std::optional<std::string> textInMainBundle(NSString* _Nonnull key);

// Where the bundle is now.
AppLocationPolicy::Context locationOfMainBundle();

// The group's container, which may not have been made yet; nothing when the application is not entitled to the group.
// Any thread, as NSFileManager's own.
std::optional<std::filesystem::path> sharedContainer();

std::optional<std::string> environmentVariable(const char* _Nonnull name);

}
