#include "mac/ClockMac.h"

#import <Foundation/Foundation.h>

#include <mach/mach_time.h>
#include <time.h>

namespace brevanta {

namespace {

double secondsPerTick()
{
    mach_timebase_info_data_t timebase {};
    mach_timebase_info(&timebase);
    return static_cast<double>(timebase.numer) / static_cast<double>(timebase.denom) * 1e-9;
}

}

double ClockMac::continuousSeconds() const
{
    static const double scale = secondsPerTick();
    return static_cast<double>(mach_continuous_time()) * scale;
}

double ClockMac::uptimeSeconds() const { return NSProcessInfo.processInfo.systemUptime; }

std::uint64_t ClockMac::rawMonotonicNanoseconds() const { return clock_gettime_nsec_np(CLOCK_MONOTONIC_RAW); }

double ClockMac::wallSeconds() const { return [NSDate date].timeIntervalSince1970; }

}
