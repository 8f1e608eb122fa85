// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <objc/objc.h>

NS_ASSUME_NONNULL_BEGIN

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double NSTimeInterval;

@class NSString;

// Documentation: CFBridgingRetain; macOS 10.7. The caller releases the result with CFRelease.
extern "C" CFTypeRef _Nullable CFBridgingRetain(id _Nullable object) __attribute__((cf_returns_retained));

// Documentation: NSObject (protocol); macOS 10.0.
@protocol NSObject
- (BOOL)isKindOfClass:(Class)aClass;
@property (readonly, copy) NSString* description;
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

// Documentation: NSCoder; macOS 10.0.
@interface NSCoder : NSObject
@end

// Documentation: NSStringEncoding; macOS 10.0.
typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding { NSUTF8StringEncoding = 4, NSISOLatin1StringEncoding = 5 };

// Documentation: NSData; macOS 10.0.
@interface NSData : NSObject
+ (instancetype)dataWithBytes:(nullable const void*)bytes length:(NSUInteger)length;
@property (readonly) NSUInteger length;
@property (readonly) const void* bytes NS_RETURNS_INNER_POINTER;
@end

// Documentation: NSString; macOS 10.0.
@interface NSString : NSObject <NSCopying>
@property (readonly) NSUInteger length;
- (nullable instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)length encoding:(NSStringEncoding)encoding;
- (nullable NSData*)dataUsingEncoding:(NSStringEncoding)encoding;
- (BOOL)hasSuffix:(NSString*)suffix;
- (BOOL)isEqualToString:(NSString*)aString;
@property (readonly, copy) NSString* lowercaseString;
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
+ (instancetype)arrayWithObject:(ObjectType)object;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nonnull])objects count:(NSUInteger)count;
@property (nullable, nonatomic, readonly) ObjectType lastObject;
@end

// Documentation: NSMutableArray; macOS 10.0.
@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
- (void)addObject:(ObjectType)object;
@end

// Documentation: NSDictionary; macOS 10.0.
@interface NSDictionary<__covariant KeyType, __covariant ObjectType> : NSObject <NSFastEnumeration>
+ (instancetype)dictionary;
- (nullable ObjectType)objectForKey:(KeyType)key;
@end

// Documentation: NSMutableDictionary; macOS 10.0.
@interface NSMutableDictionary<KeyType, ObjectType> : NSDictionary <KeyType, ObjectType>
- (void)setObject:(ObjectType)anObject forKey:(KeyType)aKey;
@end

// Documentation: NSErrorDomain; macOS 10.0.
typedef NSString* NSErrorDomain;
extern NSErrorDomain const NSURLErrorDomain;

// Documentation: NSError; macOS 10.2.
@interface NSError : NSObject
@property (readonly, copy) NSErrorDomain domain;
@property (readonly) NSInteger code;
@property (readonly, copy) NSString* localizedDescription;
@end

// Documentation: NSKeyValueChangeKey; macOS 10.0.
typedef NSString* NSKeyValueChangeKey;

// Documentation: NSKeyValueObservingOptions; macOS 10.0.
typedef NS_OPTIONS(NSUInteger, NSKeyValueObservingOptions) { NSKeyValueObservingOptionNew = 0x01 };

// Documentation: NSKeyValueObserving; macOS 10.0. The observer is called on the thread that changes the value.
@interface NSObject (NSKeyValueObserving)
- (void)observeValueForKeyPath:(nullable NSString*)keyPath
                      ofObject:(nullable id)object
                        change:(nullable NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(nullable void*)context;
- (void)addObserver:(NSObject*)observer
         forKeyPath:(NSString*)keyPath
            options:(NSKeyValueObservingOptions)options
            context:(nullable void*)context;
- (void)removeObserver:(NSObject*)observer forKeyPath:(NSString*)keyPath;
@end

// Documentation: NSStringFromSelector; macOS 10.0.
extern "C" NSString* NSStringFromSelector(SEL aSelector);

// Documentation: NSNotification; macOS 10.0.
@interface NSNotification : NSObject
@property (nullable, readonly, strong) id object;
@property (nullable, readonly, copy) NSDictionary* userInfo;
@end

// Documentation: NSNotificationName; macOS 10.0.
typedef NSString* NSNotificationName;

@class NSOperationQueue;

// Documentation: NSNotificationCenter; macOS 10.0. The block runs on the queue, or without one on the posting thread.
@interface NSNotificationCenter : NSObject
- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(nullable NSNotificationName)name
             object:(nullable id)object;
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name // macOS 10.6
                            object:(nullable id)object
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block;
- (void)removeObserver:(id)observer name:(nullable NSNotificationName)name object:(nullable id)object;
- (void)removeObserver:(id)observer;
@end

// Documentation: NSURL; macOS 10.0.
@interface NSURL : NSObject
+ (nullable instancetype)URLWithString:(NSString*)text;
+ (NSURL*)fileURLWithPath:(NSString*)path isDirectory:(BOOL)isDirectory; // macOS 10.5
+ (NSURL*)fileURLWithPath:(NSString*)path;
@property (nullable, readonly, copy) NSString* absoluteString;
@property (nullable, readonly, copy) NSURL* absoluteURL;
@property (nullable, readonly, copy) NSString* scheme;
@property (nullable, readonly, copy) NSString* user;
@property (nullable, readonly, copy) NSString* password;
@property (nullable, readonly, copy) NSString* host;
@property (nullable, readonly, copy) NSNumber* port;
@property (nullable, readonly, copy) NSString* path;
@end

// Documentation: NSURLRequestCachePolicy; macOS 10.2.
typedef NS_ENUM(NSUInteger, NSURLRequestCachePolicy) { NSURLRequestUseProtocolCachePolicy = 0 };

// Documentation: NSURLRequest; macOS 10.2.
@interface NSURLRequest : NSObject
+ (instancetype)requestWithURL:(NSURL*)url
                   cachePolicy:(NSURLRequestCachePolicy)cachePolicy
               timeoutInterval:(NSTimeInterval)timeoutInterval;
@property (nullable, readonly, copy) NSURL* URL;
@end

// Documentation: NSURLResponse; macOS 10.2.
@interface NSURLResponse : NSObject
@property (nullable, readonly, copy) NSURL* URL;
@end

// Documentation: NSHTTPURLResponse; macOS 10.2.
@interface NSHTTPURLResponse : NSURLResponse
@property (readonly) NSInteger statusCode;
- (nullable NSString*)valueForHTTPHeaderField:(NSString*)field; // macOS 10.15
@end

// Documentation: NSJSONReadingOptions; macOS 10.7.
typedef NS_OPTIONS(NSUInteger, NSJSONReadingOptions) { NSJSONReadingFragmentsAllowed = 1UL << 2 };

// Documentation: NSJSONWritingOptions; macOS 10.7; NSJSONWritingFragmentsAllowed macOS 10.15.
typedef NS_OPTIONS(NSUInteger, NSJSONWritingOptions) { NSJSONWritingFragmentsAllowed = 1UL << 2 };

// Documentation: NSJSONSerialization; macOS 10.7.
@interface NSJSONSerialization : NSObject
+ (BOOL)isValidJSONObject:(id)object;
+ (nullable NSData*)dataWithJSONObject:(id)object
                               options:(NSJSONWritingOptions)options
                                 error:(NSError* _Nullable __autoreleasing* _Nullable)error;
+ (nullable id)JSONObjectWithData:(NSData*)data
                          options:(NSJSONReadingOptions)options
                            error:(NSError* _Nullable __autoreleasing* _Nullable)error;
@end

// Documentation: NSUUID; macOS 10.8.
@interface NSUUID : NSObject
+ (instancetype)UUID;
@property (readonly, copy) NSString* UUIDString;
@end

// Documentation: NSHost; macOS 10.0.
@interface NSHost : NSObject
+ (instancetype)currentHost;
@property (nullable, readonly, copy) NSString* localizedName; // macOS 10.6
@end

// Documentation: AEEventClass, AEEventID and AEKeyword; macOS 10.0.
typedef unsigned int AEEventClass;
typedef unsigned int AEEventID;
typedef unsigned int AEKeyword;

// Documentation: NSAppleEventDescriptor; macOS 10.0.
@interface NSAppleEventDescriptor : NSObject
- (nullable NSAppleEventDescriptor*)paramDescriptorForKeyword:(AEKeyword)keyword;
@property (nullable, readonly, copy) NSString* stringValue;
@end

// Documentation: NSAppleEventManager; macOS 10.0.
@interface NSAppleEventManager : NSObject
+ (NSAppleEventManager*)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)handleEventSelector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
@end

// Documentation: NSPropertyListSerialization; macOS 10.2.
typedef NS_OPTIONS(NSUInteger, NSPropertyListMutabilityOptions) {
    NSPropertyListImmutable = 0,
};
typedef NSPropertyListMutabilityOptions NSPropertyListReadOptions;
typedef NS_ENUM(NSUInteger, NSPropertyListFormat) {
    NSPropertyListXMLFormat_v1_0 = 100,
};
@interface NSPropertyListSerialization : NSObject
+ (nullable id)propertyListWithData:(NSData*)data // macOS 10.6
                            options:(NSPropertyListReadOptions)options
                             format:(nullable NSPropertyListFormat*)format
                              error:(NSError* _Nullable* _Nullable)error;
@end

// Documentation: NSDate; macOS 10.0.
@interface NSDate : NSObject
+ (instancetype)date;
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)seconds;
@property (readonly) NSTimeInterval timeIntervalSince1970;
@end

// Documentation: NSOperatingSystemVersion; macOS 10.10.
typedef struct {
    NSInteger majorVersion;
    NSInteger minorVersion;
    NSInteger patchVersion;
} NSOperatingSystemVersion;

// Documentation: NSLocale; macOS 10.0, preferredLanguages macOS 10.5.
@interface NSLocale : NSObject
@property (class, readonly, copy) NSArray<NSString*>* preferredLanguages;
@end

// Documentation: NSHomeDirectory; macOS 10.0.
extern "C" NSString* NSHomeDirectory(void);

// Documentation: NSProcessInfo; macOS 10.0.
@interface NSProcessInfo : NSObject
@property (class, readonly, strong) NSProcessInfo* processInfo;
@property (readonly) NSTimeInterval systemUptime; // macOS 10.6
@property (readonly, copy) NSString* hostName;
@property (readonly) NSOperatingSystemVersion operatingSystemVersion; // macOS 10.10
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
- (nullable NSDictionary<NSString*, id>*)persistentDomainForName:(NSString*)domainName;
@end

// Documentation: NSFileManager; macOS 10.0.
@interface NSFileManager : NSObject
@property (class, readonly, strong) NSFileManager* defaultManager;
- (BOOL)fileExistsAtPath:(NSString*)path isDirectory:(nullable BOOL*)isDirectory;
- (BOOL)fileExistsAtPath:(NSString*)path;
- (nullable NSURL*)containerURLForSecurityApplicationGroupIdentifier:(NSString*)groupIdentifier; // macOS 10.8
@end

// Documentation: NSBundle; macOS 10.0.
@interface NSBundle : NSObject
@property (class, readonly, strong) NSBundle* mainBundle;
+ (nullable instancetype)bundleWithPath:(NSString*)path;
@property (readonly, copy) NSString* bundlePath;
@property (nullable, readonly, copy) NSDictionary<NSString*, id>* infoDictionary;
@property (nullable, readonly, copy) NSString* bundleIdentifier;
@property (nullable, readonly, copy) NSString* executablePath;
@property (nullable, readonly, copy) NSString* resourcePath;
- (nullable id)objectForInfoDictionaryKey:(NSString*)key;
@end

// Documentation: NSFileHandle; macOS 10.0.
@interface NSFileHandle : NSObject
@property (class, readonly, strong) NSFileHandle* fileHandleWithNullDevice;
@end

// Documentation: NSTaskTerminationReason; macOS 10.6.
typedef NS_ENUM(NSInteger, NSTaskTerminationReason) {
    NSTaskTerminationReasonExit = 1,
    NSTaskTerminationReasonUncaughtSignal = 2
};

// Documentation: NSTask; macOS 10.0. The termination handler may run on a background thread.
@interface NSTask : NSObject
@property (nullable, copy) NSURL* executableURL; // macOS 10.13
@property (nullable, copy) NSArray<NSString*>* arguments;
@property (nullable, strong) id standardInput;
@property (nullable, strong) id standardOutput;
@property (nullable, strong) id standardError;
@property (nullable, copy) void (^terminationHandler)(NSTask* task); // macOS 10.7
@property (readonly, getter=isRunning) BOOL running;
@property (readonly) int terminationStatus;
@property (readonly) NSTaskTerminationReason terminationReason; // macOS 10.6
- (BOOL)launchAndReturnError:(NSError* _Nullable __autoreleasing* _Nullable)error; // macOS 10.13
- (void)terminate;
@end

NS_ASSUME_NONNULL_END
