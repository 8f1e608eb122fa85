// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

extern "C" {

#pragma clang assume_nonnull begin

typedef unsigned char Boolean;
typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFHashCode;
typedef const void* CFTypeRef;
typedef const struct __attribute__((objc_bridge(NSString))) __CFString* CFStringRef;
typedef const struct __attribute__((objc_bridge(NSNumber))) __CFNumber* CFNumberRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef CFStringRef CFRunLoopMode;

// Documentation: CFType; macOS 10.0.
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);

// Documentation: CFBoolean; macOS 10.0.
CFTypeID CFBooleanGetTypeID(void);

// Documentation: CFNumber; macOS 10.0.
Boolean CFNumberIsFloatType(CFNumberRef number);

// Documentation: CFRunLoop; macOS 10.0.
extern const CFRunLoopMode kCFRunLoopCommonModes;
CFRunLoopRef CFRunLoopGetMain(void); // macOS 10.5
void CFRunLoopRun(void);
void CFRunLoopStop(CFRunLoopRef loop);
void CFRunLoopWakeUp(CFRunLoopRef loop);
void CFRunLoopAddSource(
    CFRunLoopRef loop, CFRunLoopSourceRef _Null_unspecified source, CFRunLoopMode _Null_unspecified mode);

// Documentation: CFRunLoopSource; macOS 10.0.
typedef struct {
    CFIndex version;
    void* _Null_unspecified info;
    const void* _Null_unspecified (*_Null_unspecified retain)(const void* _Null_unspecified info);
    void (*_Null_unspecified release)(const void* _Null_unspecified info);
    CFStringRef _Null_unspecified (*_Null_unspecified copyDescription)(const void* _Null_unspecified info);
    Boolean (*_Null_unspecified equal)(const void* _Null_unspecified first, const void* _Null_unspecified second);
    CFHashCode (*_Null_unspecified hash)(const void* _Null_unspecified info);
    void (*_Null_unspecified schedule)(
        void* _Null_unspecified info, CFRunLoopRef _Null_unspecified loop, CFRunLoopMode _Null_unspecified mode);
    void (*_Null_unspecified cancel)(
        void* _Null_unspecified info, CFRunLoopRef _Null_unspecified loop, CFRunLoopMode _Null_unspecified mode);
    void (*_Null_unspecified perform)(void* _Null_unspecified info);
} CFRunLoopSourceContext;
CFRunLoopSourceRef _Null_unspecified CFRunLoopSourceCreate(
    CFAllocatorRef _Null_unspecified allocator, CFIndex order, CFRunLoopSourceContext* _Null_unspecified context);
void CFRunLoopSourceInvalidate(CFRunLoopSourceRef _Null_unspecified source);
void CFRunLoopSourceSignal(CFRunLoopSourceRef _Null_unspecified source);

#pragma clang assume_nonnull end
}
