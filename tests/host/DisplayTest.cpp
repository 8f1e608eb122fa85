#include "host/DisplayTest.h"

#include "support/VirtualDisplay.h"

namespace brevanta {

namespace {

using functional::VirtualDisplay;

// GTK takes one display for the life of the process.
class DisplayEnvironment final : public testing::Environment {
public:
    void SetUp() override
    {
        auto started = VirtualDisplay::start();
        ASSERT_TRUE(started) << started.error();
        m_display = std::move(*started);
        g_setenv("DISPLAY", m_display->name().c_str(), TRUE);
        g_setenv("NO_AT_BRIDGE", "1", TRUE);
        g_setenv("GSETTINGS_BACKEND", "memory", TRUE); // The file chooser's, which are the user's own.
        g_unsetenv("WAYLAND_DISPLAY");
        ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
        Gtk::Main::init_gtkmm_internals();
    }

private:
    std::unique_ptr<VirtualDisplay> m_display;
};

const auto* const displayEnvironment = testing::AddGlobalTestEnvironment(new DisplayEnvironment);

}

}
