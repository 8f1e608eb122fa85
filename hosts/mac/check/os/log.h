// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>

// Documentation: os_log_t; macOS 10.12.
@protocol OS_os_log <NSObject>
@end
typedef NSObject<OS_os_log>* os_log_t;

// Documentation: os_log_create; macOS 10.12.
extern "C" os_log_t _Nonnull os_log_create(const char* _Nonnull subsystem, const char* _Nonnull category);

// Documentation: os_log; macOS 10.12. A macro that takes a string literal; a function here, so that the format is
// checked.
extern "C" void os_log(os_log_t _Nonnull log, const char* _Nonnull format, ...) __attribute__((format(os_log, 2, 3)));
