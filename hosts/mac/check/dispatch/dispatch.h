// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <Foundation/Foundation.h>

// Documentation: dispatch_queue_t; macOS 10.6.
@protocol OS_dispatch_queue <NSObject>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;

// Documentation: dispatch_queue_attr_t; macOS 10.6.
@protocol OS_dispatch_queue_attr <NSObject>
@end
typedef NSObject<OS_dispatch_queue_attr>* dispatch_queue_attr_t;

// Documentation: DISPATCH_QUEUE_SERIAL; macOS 10.7.
#define DISPATCH_QUEUE_SERIAL nullptr

extern "C" {

// Documentation: dispatch_get_main_queue; macOS 10.10.
dispatch_queue_t _Nonnull dispatch_get_main_queue(void);

// Documentation: dispatch_queue_create; macOS 10.6.
dispatch_queue_t _Nonnull dispatch_queue_create(const char* _Nullable label, dispatch_queue_attr_t _Nullable attribute);

// Documentation: dispatch_async; macOS 10.6. Another thread runs the block.
void dispatch_async(dispatch_queue_t _Nonnull queue, void (^_Nonnull block)(void));
}
