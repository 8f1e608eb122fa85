// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <objc/objc.h>

NS_ASSUME_NONNULL_BEGIN

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double NSTimeInterval;

@class NSString;

// Documentation: NSObject (protocol); macOS 10.0.
@protocol NSObject
- (BOOL)isKindOfClass:(Class)aClass;
@end

// Documentation: NSCopying; macOS 10.0.
@protocol NSCopying
@end

// Documentation: NSFastEnumeration; macOS 10.5.
typedef struct {
    unsigned long state;
    id __unsafe_unretained _Nullable* _Nullable itemsPtr;
    unsigned long* _Nullable mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;
@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)count;
@end

// Documentation: NSObject; macOS 10.0.
__attribute__((objc_root_class))
@interface NSObject<NSObject> {
    Class isa;
}
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init NS_DESIGNATED_INITIALIZER;
@end

// Documentation: NSStringEncoding; macOS 10.0.
typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding { NSUTF8StringEncoding = 4, NSISOLatin1StringEncoding = 5 };

// Documentation: NSData; macOS 10.0.
@interface NSData : NSObject
@property (readonly) NSUInteger length;
@property (readonly) const void* bytes NS_RETURNS_INNER_POINTER;
@end

// Documentation: NSString; macOS 10.0.
@interface NSString : NSObject <NSCopying>
@property (readonly) NSUInteger length;
- (nullable instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)length encoding:(NSStringEncoding)encoding;
- (nullable NSData*)dataUsingEncoding:(NSStringEncoding)encoding;
- (BOOL)hasSuffix:(NSString*)suffix;
@property (readonly, getter=isAbsolutePath) BOOL absolutePath;
@end

// Documentation: NSNumber; macOS 10.0.
@interface NSNumber : NSObject
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithLongLong:(long long)value;
+ (NSNumber*)numberWithDouble:(double)value;
@property (readonly) BOOL boolValue;
@property (readonly) int intValue;
@property (readonly) long long longLongValue;
@property (readonly) double doubleValue;
- (BOOL)isEqualToNumber:(NSNumber*)number;
@end

// Documentation: NSArray; macOS 10.0.
@interface NSArray<__covariant ObjectType> : NSObject <NSFastEnumeration>
+ (instancetype)array;
@property (nullable, nonatomic, readonly) ObjectType lastObject;
@end

// Documentation: NSMutableArray; macOS 10.0.
@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
- (void)addObject:(ObjectType)object;
@end

// Documentation: NSError; macOS 10.2.
@interface NSError : NSObject
@property (readonly, copy) NSString* localizedDescription;
@end

// Documentation: NSNotification; macOS 10.0.
@interface NSNotification : NSObject
@end

// Documentation: NSURL; macOS 10.0.
@interface NSURL : NSObject
+ (nullable instancetype)URLWithString:(NSString*)text;
+ (NSURL*)fileURLWithPath:(NSString*)path isDirectory:(BOOL)isDirectory; // macOS 10.5
@property (nullable, readonly, copy) NSString* scheme;
@end

// Documentation: NSDate; macOS 10.0.
@interface NSDate : NSObject
+ (instancetype)date;
@property (readonly) NSTimeInterval timeIntervalSince1970;
@end

// Documentation: NSProcessInfo; macOS 10.0.
@interface NSProcessInfo : NSObject
@property (class, readonly, strong) NSProcessInfo* processInfo;
@property (readonly) NSTimeInterval systemUptime; // macOS 10.6
@end

// Documentation: NSThread; macOS 10.0.
@interface NSThread : NSObject
@property (class, readonly) BOOL isMainThread; // macOS 10.5
@end

// Documentation: NSRunLoopMode; macOS 10.0.
typedef NSString* NSRunLoopMode;
extern NSRunLoopMode const NSDefaultRunLoopMode;

// Documentation: NSTimer; macOS 10.0.
@interface NSTimer : NSObject
+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)seconds
                          repeats:(BOOL)repeats
                            block:(void (^)(NSTimer* timer))block; // macOS 10.12
- (void)invalidate;
@end

// Documentation: NSRunLoop; macOS 10.0.
@interface NSRunLoop : NSObject
@property (class, readonly, strong) NSRunLoop* mainRunLoop; // macOS 10.5
- (void)addTimer:(NSTimer*)timer forMode:(NSRunLoopMode)mode;
@end

// Documentation: NSUserDefaults; macOS 10.0.
@interface NSUserDefaults : NSObject
@property (class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (nullable id)objectForKey:(NSString*)key;
- (void)setObject:(nullable id)object forKey:(NSString*)key;
- (void)removeObjectForKey:(NSString*)key;
@end

// Documentation: NSFileManager; macOS 10.0.
@interface NSFileManager : NSObject
@property (class, readonly, strong) NSFileManager* defaultManager;
- (BOOL)fileExistsAtPath:(NSString*)path isDirectory:(nullable BOOL*)isDirectory;
@end

// Documentation: NSBundle; macOS 10.0.
@interface NSBundle : NSObject
@property (class, readonly, strong) NSBundle* mainBundle;
@property (readonly, copy) NSString* bundlePath;
@property (nullable, readonly, copy) NSString* bundleIdentifier;
@property (nullable, readonly, copy) NSString* executablePath;
- (nullable id)objectForInfoDictionaryKey:(NSString*)key;
@end

NS_ASSUME_NONNULL_END
