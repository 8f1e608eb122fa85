// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
// The time functions of C are this system's own; no #pragma once, since the system includes this file in pieces.
#include_next <time.h>

#ifndef BREVANTA_CHECK_TIME_H
#define BREVANTA_CHECK_TIME_H

// Documentation: clock_gettime(3); macOS 10.12.
extern "C" unsigned long long clock_gettime_nsec_np(clockid_t clock);

#endif
