#include "gtk/AlertPanelGtk.h"

#include "host/DisplayTest.h"

#include <optional>

namespace brevanta {

namespace {

class AlertPanelGtkTest : public DisplayTest {
protected:
    // The dialogs that can be seen, from the oldest on.
    std::vector<Gtk::MessageDialog*> dialogs()
    {
        std::vector<Gtk::MessageDialog*> shown;
        for (auto* const toplevel : Gtk::Window::list_toplevels()) {
            if (auto* const dialog = dynamic_cast<Gtk::MessageDialog*>(toplevel); dialog && dialog->get_visible())
                shown.push_back(dialog);
        }
        return shown;
    }

    std::optional<AlertResponse> endOf(const std::function<void()>& act)
    {
        std::optional<AlertResponse> ended;
        alerts.present(alert, [&](AlertResponse response) { ended = response; });
        EXPECT_TRUE(serveUntil([&] { return dialogs().size() == 1; }));
        act();
        EXPECT_FALSE(ended); // Never from inside the call.
        EXPECT_TRUE(serveUntil([&] { return ended.has_value(); }));
        EXPECT_TRUE(dialogs().empty());
        return ended;
    }

    Gtk::Window window;
    AlertPanelGtk alerts { window, loop, BREVANTA_RESOURCES };
    Alert alert { .identifier = "one",
        .style = AlertStyle::warning,
        .message = "A <b>message</b> with a_b",
        .informativeText = "More & more",
        .buttons = { "First", "Second" } };
};

}

TEST_F(AlertPanelGtkTest, TimersAndPostedWorkGoOnWhileAnAlertIsOpen)
{
    int ticks = 0;
    bool posted = false;
    const auto timer = loop.startTimer(0.01, TimerRepeat::forever, [&] { ++ticks; });
    const auto ended = endOf([&] {
        loop.post([&] { posted = true; });
        const int before = ticks;
        EXPECT_TRUE(serveUntil([&] { return ticks >= before + 5 && posted; }));
        EXPECT_EQ(dialogs().size(), 1u);
        alerts.withdraw("one");
    });
    EXPECT_EQ(ended, (AlertResponse { AlertEnd::withdrawn, 0 }));
}

TEST_F(AlertPanelGtkTest, AButtonIsReportedByItsPlaceAndClosingCountsAsTheLastOne)
{
    EXPECT_EQ(endOf([&] { dialogs()[0]->response(0); }), (AlertResponse { AlertEnd::button, 0 }));
    EXPECT_EQ(endOf([&] { dialogs()[0]->response(1); }), (AlertResponse { AlertEnd::button, 1 }));
    EXPECT_EQ(endOf([&] { dialogs()[0]->close(); }), (AlertResponse { AlertEnd::button, 1 }));
}

TEST_F(AlertPanelGtkTest, ASecondAlertOfANameIsNotShown)
{
    std::optional<AlertResponse> second;
    (void)endOf([&] {
        alerts.present(alert, [&](AlertResponse response) { second = response; });
        EXPECT_TRUE(serveUntil([&] { return second.has_value(); }));
        EXPECT_EQ(dialogs().size(), 1u);
        alerts.withdraw("another");
        EXPECT_EQ(dialogs().size(), 1u);
        dialogs()[0]->response(0);
    });
    EXPECT_EQ(second, (AlertResponse { AlertEnd::withdrawn, 0 }));
}

TEST_F(AlertPanelGtkTest, TheTextsStandOnceAndAsTheyAreBesideTheApplicationsIcon)
{
    Gtk::Settings::get_default()->property_gtk_dialogs_use_header() = true; // As GNOME has it.
    (void)endOf([&] {
        std::vector<std::string> texts;
        for (const auto* const label : widgetsIn<Gtk::Label>(*dialogs()[0]))
            texts.push_back(label->get_text());
        EXPECT_EQ(std::ranges::count(texts, alert.message), 1);
        EXPECT_EQ(std::ranges::count(texts, alert.informativeText), 1);
        EXPECT_TRUE(dialogs()[0]->get_titlebar()) << "the desktop's own one would show the message";
        const auto images = widgetsIn<Gtk::Image>(*dialogs()[0]);
        ASSERT_EQ(images.size(), 1U);
        EXPECT_TRUE(images[0]->get_visible());
        EXPECT_EQ(images[0]->get_storage_type(), Gtk::IMAGE_SURFACE);
        dialogs()[0]->response(0);
    });
}

}
