#include "gtk/standin/LaunchProperties.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace brevanta {

TEST(LaunchProperties, WhatIsNoListOfADaemonIsRefused)
{
    const std::string label = "<key>Label</key><string>l</string>";
    const std::string arguments = "<key>ProgramArguments</key><array><string>/p</string><string>-q</string></array>";
    const auto parse = [](const std::string& entries) {
        return parseLaunchProperties("<!DOCTYPE plist><plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
    };
    const LaunchProperties expected { .label = "l", .programArguments = { "/p", "-q" } };
    EXPECT_EQ(parse(label + arguments), expected);
    EXPECT_EQ(parse(arguments
                  + "<key>Sockets</key><dict><key>Label</key><string>x</string></dict><key>K</key><array>"
                    "<string>y</string></array>"
                  + label),
        expected);
    for (const auto& entries : { std::string(), label, arguments, label + "<key>ProgramArguments</key><array/>",
             label + "<key>ProgramArguments</key><string>/p</string>",
             label + "<key>ProgramArguments</key><array><integer>1</integer></array>", label + arguments + "<dict>" })
        EXPECT_EQ(parse(entries), std::unexpected(EINVAL)) << entries;
    for (const auto* const text : { "", "bplist00", "<dict><key>Label</key></dict>", "<plist><array/></plist>" })
        EXPECT_EQ(parseLaunchProperties(text), std::unexpected(EINVAL)) << text;
    EXPECT_EQ(readLaunchProperties("/dev/zero"), std::unexpected(EINVAL));
}

}
