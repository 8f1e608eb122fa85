// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

// Documentation: OSAScriptErrorMessageKey; macOS 10.6.
extern NSString* const OSAScriptErrorMessageKey;

// Documentation: OSAScriptErrorNumberKey; macOS 10.6.
extern NSString* const OSAScriptErrorNumberKey;

// Documentation: OSAStorageOptions; macOS 10.4.
typedef NS_OPTIONS(NSUInteger, OSAStorageOptions) { OSANull = 0 };

// Documentation: OSALanguage; macOS 10.4.
@interface OSALanguage : NSObject
+ (nullable OSALanguage*)languageForName:(NSString*)name;
@end

// Documentation: OSALanguageInstance; macOS 10.6.
@interface OSALanguageInstance : NSObject
+ (instancetype)languageInstanceWithLanguage:(OSALanguage*)language;
@end

// Documentation: OSAScript; macOS 10.4.
@interface OSAScript : NSObject
- (instancetype)initWithSource:(NSString*)source // macOS 10.6
                       fromURL:(nullable NSURL*)url
              languageInstance:(nullable OSALanguageInstance*)instance
           usingStorageOptions:(OSAStorageOptions)storageOptions NS_DESIGNATED_INITIALIZER;
- (BOOL)compileAndReturnError:(NSDictionary<NSString*, id>* _Nullable __autoreleasing* _Nullable)errorInfo;
- (nullable NSAppleEventDescriptor*)executeAndReturnError:
    (NSDictionary<NSString*, id>* _Nullable __autoreleasing* _Nullable)errorInfo;
@end

NS_ASSUME_NONNULL_END
