// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: CALayer; macOS 10.5.
@interface CALayer : NSObject
@property (nullable) CGColorRef backgroundColor;
@end

NS_ASSUME_NONNULL_END
