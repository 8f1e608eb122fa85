#include "filter/SystemSettings.h"

#include <gtest/gtest.h>

namespace brevanta {

TEST(SystemSettings, EachReleaseHasItsOwnWayToTheApproval)
{
    const std::string extensions = "x-apple.systempreferences:com.apple.ExtensionsPreferences?extensionPointIdentifier="
                                   "com.apple.system_extension.network_extension.extension-point";
    const std::string security = "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension";
    const std::string oldSecurity = "x-apple.systempreferences:com.apple.preference.security";
    const std::string toExtensions = "Open System Settings yourself: General, then Login Items & Extensions, then "
                                     "Network Extensions, and turn on Brevanta Filter.";
    const std::string toSecurity = "Open System Settings yourself: Privacy & Security, then click Allow next to the "
                                   "blocked system software from Brevanta.";
    struct Case {
        SystemVersion version;
        FilterApprovalPanes expected;
    };
    for (const auto& [version, expected] : std::initializer_list<Case> {
             { { 26, 1, 0 }, { extensions, security, toExtensions } },
             { { 15, 0, 0 }, { extensions, security, toExtensions } },
             { { 14, 99, 99 }, { security, extensions, toSecurity } },
             { { 13, 0, 0 }, { security, extensions, toSecurity } },
             { { 12, 7, 6 }, { oldSecurity, extensions, toSecurity } },
             { { 10, 16, 0 }, { oldSecurity, extensions, toSecurity } },
         })
        EXPECT_EQ(filterApprovalPanes(version), expected) << version.major;
}

}
