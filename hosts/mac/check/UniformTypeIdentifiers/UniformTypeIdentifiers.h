// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: UTType; macOS 11.0.
@interface UTType : NSObject
@end

// Documentation: UTTypeApplicationBundle; macOS 11.0.
extern UTType* const UTTypeApplicationBundle;

NS_ASSUME_NONNULL_END
