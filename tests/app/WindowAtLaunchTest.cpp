#include "app/WindowAtLaunch.h"

#include <gtest/gtest.h>
#include <limits>

namespace brevanta {

TEST(WindowAtLaunch, StaysHiddenOnlyRightAfterALogin)
{
    struct Case {
        std::optional<double> seconds;
        WindowAtLaunch expected;
        const char* line;
    };
    for (const auto& [seconds, expected, line] : {
             Case { std::nullopt, WindowAtLaunch::shown,
                 "[Launch] seconds since console login=unknown → showsWindow=true" },
             Case { -0.5, WindowAtLaunch::shown, "[Launch] seconds since console login=-0.5 → showsWindow=true" },
             Case { 0, WindowAtLaunch::hidden, "[Launch] seconds since console login=0.0 → showsWindow=false" },
             Case { 30, WindowAtLaunch::hidden, "[Launch] seconds since console login=30.0 → showsWindow=false" },
             Case { 89.9, WindowAtLaunch::hidden, "[Launch] seconds since console login=89.9 → showsWindow=false" },
             Case { 90, WindowAtLaunch::shown, "[Launch] seconds since console login=90.0 → showsWindow=true" },
             Case { 120, WindowAtLaunch::shown, "[Launch] seconds since console login=120.0 → showsWindow=true" },
         }) {
        EXPECT_EQ(windowAtLaunch(seconds), expected) << line;
        EXPECT_EQ(describeWindowAtLaunch(seconds), line);
    }
    EXPECT_EQ(windowAtLaunch(std::numeric_limits<double>::quiet_NaN()), WindowAtLaunch::shown);
}

}
