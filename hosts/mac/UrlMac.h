#pragma once

#include "platform/Url.h"

#import <Foundation/Foundation.h>

namespace brevanta {

// The URL with the parts that NSURL reads from it (documentation page NSURL); nothing for nil and for an empty one.
// Any thread.
std::optional<Url> urlFrom(NSURL* _Nullable url);

// The text as an absolute URL; nil when Foundation cannot read it as one. Any thread.
NSURL* _Nullable absoluteUrlFromText(NSString* _Nullable text);

}
