// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

// Documentation: Objective-C Runtime; macOS 10.0. BOOL is bool on Apple silicon and signed char on Intel.
typedef bool BOOL;
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr

#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#define NS_DESIGNATED_INITIALIZER __attribute__((objc_designated_initializer))
#define NS_UNAVAILABLE __attribute__((unavailable))
#define NS_RETURNS_INNER_POINTER __attribute__((objc_returns_inner_pointer))
#define NS_ENUM(type, name)                                                                                            \
    enum name : type name;                                                                                             \
    enum name : type
// In C++ an option set is an integer, so that its members can be joined with |.
#define NS_OPTIONS(type, name)                                                                                         \
    typedef type name;                                                                                                 \
    enum : type
