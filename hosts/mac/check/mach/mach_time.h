// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

#include <stdint.h>

extern "C" {

typedef int kern_return_t;

// Documentation: mach_timebase_info; macOS 10.0.
struct mach_timebase_info {
    uint32_t numer;
    uint32_t denom;
};
typedef struct mach_timebase_info mach_timebase_info_data_t;
kern_return_t mach_timebase_info(mach_timebase_info_data_t* info);

// Documentation: mach_continuous_time; macOS 10.12.
uint64_t mach_continuous_time(void);
}
