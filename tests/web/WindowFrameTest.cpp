#include "web/WindowFrame.h"

#include "fakes/FakePorts.h"

#include <gtest/gtest.h>

namespace brevanta {

namespace {

constexpr WindowSize sizeOfNewWindow { 1200, 800 };

// Two screens side by side, the left one below a panel.
constexpr ScreenArea screens[] { { { 0, 30 }, { 1440, 870 } }, { { 1440, 0 }, { 1920, 1080 } } };

using Numbers = std::vector<std::int64_t>;

}

TEST(WindowFrameTest, ComesBackAsItWas)
{
    FakeUserDefaults defaults;
    EXPECT_EQ(rememberedFrame(defaults, screens, sizeOfNewWindow), WindowFrame {});
    WindowFrame frame { .size = WindowSize { 700, 500 }, .position = WindowPosition { 1500, 40 } };
    rememberFrame(defaults, frame);
    EXPECT_EQ(rememberedFrame(defaults, screens, sizeOfNewWindow), frame);
    // While it is maximized it has no size and no place of its own.
    rememberFrame(defaults, { .extent = WindowExtent::maximized });
    frame.extent = WindowExtent::maximized;
    EXPECT_EQ(rememberedFrame(defaults, screens, sizeOfNewWindow), frame);
}

TEST(WindowFrameTest, WhatDoesNotSuitTheScreensOrIsDamagedIsNotRestored)
{
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    struct Case {
        const char* key;
        DefaultsValue value;
        bool isRestored;
    };
    for (const auto& [key, value, isRestored] : std::initializer_list<Case> {
             { "MainWindow.size", Numbers { 480, 360 }, true },
             { "MainWindow.size", Numbers { 479, 360 }, false },
             { "MainWindow.size", Numbers { 480, 359 }, false },
             { "MainWindow.size", Numbers { 1920, 1080 }, true },
             { "MainWindow.size", Numbers { 1921, 800 }, false },
             { "MainWindow.size", Numbers { 1200, 1081 }, false },
             { "MainWindow.size", Numbers { most, most }, false },
             { "MainWindow.size", Numbers { 700 }, false },
             { "MainWindow.size", Numbers { 700, 500, 1 }, false },
             { "MainWindow.size", std::string("700x500"), false },
             { "MainWindow.position", Numbers { -1100, 30 }, true }, // 100 pixels of the new window's 1200.
             { "MainWindow.position", Numbers { -1101, 30 }, false },
             { "MainWindow.position", Numbers { 200, 29 }, false }, // Below the panel.
             { "MainWindow.position", Numbers { 200, 870 }, true },
             { "MainWindow.position", Numbers { 200, 871 }, false },
             { "MainWindow.position", Numbers { 3260, 0 }, true },
             { "MainWindow.position", Numbers { 3261, 0 }, false },
             { "MainWindow.position", Numbers { -most, most }, false },
             { "MainWindow.position", Numbers {}, false },
             { "MainWindow.maximized", true, true },
             { "MainWindow.maximized", std::int64_t { 1 }, false },
         }) {
        FakeUserDefaults defaults;
        defaults.set(key, value);
        EXPECT_EQ(rememberedFrame(defaults, screens, sizeOfNewWindow) != WindowFrame {}, isRestored)
            << key << " " << testing::PrintToString(value);
    }
    FakeUserDefaults defaults;
    rememberFrame(defaults, { .size = sizeOfNewWindow, .position = WindowPosition { 0, 30 } });
    EXPECT_EQ(rememberedFrame(defaults, {}, sizeOfNewWindow), WindowFrame {}) << "no screen at all";
}

}
