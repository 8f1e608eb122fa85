#pragma once

#include "app/BuildConfiguration.h"

namespace brevanta {

// The configuration of this build, with the version and the identifier that the application bundle states where there
// is one (documentation pages NSBundle and "Information Property List"). Needs no application object.
BuildConfiguration configurationOfMainBundle();

}
