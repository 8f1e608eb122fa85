#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace brevanta {

// The text as a string of Foundation; nil when it is not UTF-8. Any thread.
NSString* _Nullable stringFromUtf8(std::string_view text);

// The text for showing it to the user: bytes that are not UTF-8 are read as ISO Latin-1, so that something is shown.
NSString* _Nonnull displayString(std::string_view text);

// UTF-8, U+0000 included; empty for nil and for text that has no UTF-8 form (an unpaired surrogate).
std::string utf8FromString(NSString* _Nullable text);

}
