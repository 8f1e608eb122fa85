// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef CGRect NSRect;
typedef CGSize NSSize;

// Documentation: NSCompositingOperation; macOS 10.12.
typedef NS_ENUM(NSUInteger, NSCompositingOperation) { NSCompositingOperationCopy = 1 };

// Documentation: NSImage; macOS 10.0.
typedef NSString* NSImageName;
extern NSImageName const NSImageNameApplicationIcon; // macOS 10.6
@interface NSImage : NSObject
+ (nullable NSImage*)imageNamed:(NSImageName)name;
- (void)setTemplate:(BOOL)isTemplate; // macOS 10.5
@property (nullable, copy) NSString* accessibilityDescription; // macOS 10.6
- (void)drawInRect:(NSRect)rect
          fromRect:(NSRect)fromRect
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)delta;
@end

// Documentation: NSColorSpaceName; macOS 10.0.
typedef NSString* NSColorSpaceName;
extern NSColorSpaceName const NSDeviceRGBColorSpace;

// Documentation: NSBitmapImageFileType; macOS 10.12.
typedef NS_ENUM(NSUInteger, NSBitmapImageFileType) { NSBitmapImageFileTypePNG = 4 };

// Documentation: NSBitmapImageRepPropertyKey; macOS 10.0.
typedef NSString* NSBitmapImageRepPropertyKey;

// Documentation: NSBitmapImageRep; macOS 10.0. Without planes it allocates its own memory.
@interface NSBitmapImageRep : NSObject
- (nullable instancetype)initWithBitmapDataPlanes:(unsigned char* _Nullable* _Nullable)planes
                                       pixelsWide:(NSInteger)width
                                       pixelsHigh:(NSInteger)height
                                    bitsPerSample:(NSInteger)bitsPerSample
                                  samplesPerPixel:(NSInteger)samplesPerPixel
                                         hasAlpha:(BOOL)alpha
                                         isPlanar:(BOOL)isPlanar
                                   colorSpaceName:(NSColorSpaceName)colorSpaceName
                                      bytesPerRow:(NSInteger)rowBytes
                                     bitsPerPixel:(NSInteger)pixelBits;
- (nullable NSData*)representationUsingType:(NSBitmapImageFileType)storageType
                                 properties:(NSDictionary<NSBitmapImageRepPropertyKey, id>*)properties;
@end

// Documentation: NSImageInterpolation; macOS 10.0.
typedef NS_ENUM(NSUInteger, NSImageInterpolation) { NSImageInterpolationHigh = 3 };

// Documentation: NSGraphicsContext; macOS 10.0.
@interface NSGraphicsContext : NSObject
+ (nullable NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmapRep; // macOS 10.4
@property (class, nullable, strong) NSGraphicsContext* currentContext;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@property NSImageInterpolation imageInterpolation;
@end

NS_ASSUME_NONNULL_END
