#include "gtk/ActivityWatch.h"
#include "support/Await.h"
#include "support/VirtualDisplay.h"

#include <gtest/gtest.h>
#include <gtkmm.h>

// Its macros break the headers above.
#include <gdk/gdkx.h>

namespace brevanta {

namespace {

using functional::awaitByAsking;
using functional::awaitUntil;
using functional::Milliseconds;

constexpr Milliseconds patience { 20000 };

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

// The window manager's part: it decides which window takes the keyboard.
class ActivityWatchTest : public testing::Test {
protected:
    void SetUp() override
    {
        for (auto* const window : { &m_first, &m_second }) {
            window->show();
            ASSERT_TRUE(awaitUntil([window] { return window->get_mapped(); }, patience));
        }
        // This has come when the server has mapped both.
        gdk_display_sync(gdk_display_get_default());
    }

    void focus(std::uint32_t window) const
    {
        xcb_set_input_focus(m_server.get(), XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME);
        xcb_flush(m_server.get());
    }

    [[nodiscard]] bool focus(Gtk::Window& window) const
    {
        focus(static_cast<std::uint32_t>(gdk_x11_window_get_xid(window.get_window()->gobj())));
        return awaitUntil([&] { return window.is_active(); }, patience);
    }

    [[nodiscard]] bool focusNothing() const
    {
        focus(std::uint32_t { XCB_NONE });
        return awaitUntil([this] { return !m_first.is_active() && !m_second.is_active(); }, patience);
    }

    // Longer than the watch waits between two windows.
    static void serveForAWhile()
    {
        bool isOver = false;
        Glib::signal_timeout().connect_once([&] { isOver = true; }, 400);
        EXPECT_TRUE(awaitUntil([&] { return isOver; }, patience));
    }

    std::unique_ptr<xcb_connection_t, Disconnect> m_server { xcb_connect(g_getenv("DISPLAY"), nullptr) };
    Gtk::Window m_first;
    Gtk::Window m_second;
    int m_activations { 0 };
    ActivityWatch m_watch { [this] { ++m_activations; } };
};

}

TEST_F(ActivityWatchTest, TellsOfTheFirstWindowAndNotOfMovesBetweenTwo)
{
    ASSERT_TRUE(focus(m_first));
    EXPECT_TRUE(awaitUntil([this] { return m_activations == 1; }, patience));
    ASSERT_TRUE(focus(m_second));
    ASSERT_TRUE(focus(m_first));
    serveForAWhile();
    EXPECT_EQ(m_activations, 1);

    ASSERT_TRUE(focusNothing());
    serveForAWhile();
    EXPECT_EQ(m_activations, 1);
    ASSERT_TRUE(focus(m_second));
    EXPECT_TRUE(awaitUntil([this] { return m_activations == 2; }, patience));
}

TEST_F(ActivityWatchTest, AWindowThatIsHiddenWhileActiveIsNoLongerActive)
{
    ASSERT_TRUE(focus(m_first));
    EXPECT_TRUE(awaitUntil([this] { return m_activations == 1; }, patience));
    m_first.hide();
    ASSERT_TRUE(awaitUntil([this] { return !m_first.is_active(); }, patience));
    serveForAWhile();
    ASSERT_TRUE(focus(m_second));
    EXPECT_TRUE(awaitUntil([this] { return m_activations == 2; }, patience));
}

TEST_F(ActivityWatchTest, ADialogThatCameLaterCountsAsAWindow)
{
    Gtk::MessageDialog dialog(m_first, "words");
    dialog.show();
    ASSERT_TRUE(awaitUntil([&] { return dialog.get_mapped(); }, patience));
    gdk_display_sync(gdk_display_get_default());
    ASSERT_TRUE(focus(dialog));
    EXPECT_TRUE(awaitUntil([this] { return m_activations == 1; }, patience));
    ASSERT_TRUE(focus(m_first));
    serveForAWhile();
    EXPECT_EQ(m_activations, 1);
}

}
