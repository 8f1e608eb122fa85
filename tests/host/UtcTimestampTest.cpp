#include "gtk/UtcTimestamp.h"

#include <gtest/gtest.h>
#include <limits>

namespace brevanta {

TEST(UtcTimestampTest, WritesAndReadsInstants)
{
    struct Case {
        double seconds;
        const char* text;
    };
    // Checked with date(1): date --utc --date=@1795262400.
    const Case cases[] = {
        { 0, "1970-01-01T00:00:00.000Z" },
        { 1795262400, "2026-11-21T12:00:00.000Z" },
        { 1709210096.789, "2024-02-29T12:34:56.789Z" },
        { -0.001, "1969-12-31T23:59:59.999Z" },
        { -62167219200, "0000-01-01T00:00:00.000Z" },
        { 253402300799.999, "9999-12-31T23:59:59.999Z" },
    };
    for (const auto& [seconds, text] : cases) {
        EXPECT_EQ(formatUtcTimestamp(seconds), text);
        EXPECT_EQ(parseUtcTimestamp(text), seconds) << text;
    }
    EXPECT_EQ(formatUtcTimestamp(0.0006), "1970-01-01T00:00:00.001Z");
    EXPECT_EQ(formatUtcTimestamp(59.9999), "1970-01-01T00:01:00.000Z");
}

TEST(UtcTimestampTest, InstantsOutsideOfFourDigitYearsHaveNoForm)
{
    using Limits = std::numeric_limits<double>;
    for (const double seconds : { -62167219200.001, 253402300800.0, 253402300799.9999, 1e300, Limits::infinity(),
             -Limits::infinity(), Limits::quiet_NaN() })
        EXPECT_EQ(formatUtcTimestamp(seconds), std::nullopt) << seconds;
}

TEST(UtcTimestampTest, EveryOtherFormIsRefused)
{
    for (const std::string_view text : { "", "2026-11-21", "2026-11-21T12:00:00Z", "2026-11-21T12:00:00.00Z",
             "2026-11-21T12:00:00.0000Z", "2026-11-21t12:00:00.000Z", "2026-11-21 12:00:00.000Z",
             "2026-11-21T12:00:00.000z", "2026-11-21T12:00:00.000+", "2026-11-21T12:00:00,000Z",
             " 026-11-21T12:00:00.000Z", "-026-11-21T12:00:00.000Z", "2026-1 -21T12:00:00.000Z",
             "2026-00-21T12:00:00.000Z", "2026-13-21T12:00:00.000Z", "2026-11-00T12:00:00.000Z",
             "2026-11-31T12:00:00.000Z", "2025-02-29T12:00:00.000Z", "2026-11-21T24:00:00.000Z",
             "2026-11-21T12:60:00.000Z", "2026-11-21T23:59:60.000Z" })
        EXPECT_EQ(parseUtcTimestamp(text), std::nullopt) << text;
}

}
