#include "gtk/PlaceholderGtk.h"

#include "host/DisplayTest.h"

namespace brevanta {

namespace {

class PlaceholderGtkTest : public DisplayTest {
protected:
    void SetUp() override
    {
        window.add(placeholder.widget());
        window.show();
    }
    void TearDown() override { window.remove(); }

    Gtk::Label& label() { return *widgetsIn<Gtk::Label>(placeholder.widget()).front(); }
    Gtk::Button& button() { return *widgetsIn<Gtk::Button>(placeholder.widget()).front(); }

    PlaceholderGtk placeholder { BREVANTA_RESOURCES };
    Gtk::Window window;
};

}

TEST_F(PlaceholderGtkTest, CoversThePageFromTheStartAndShowsNothingYet)
{
    EXPECT_TRUE(placeholder.widget().get_mapped());
    EXPECT_FALSE(label().get_mapped());
    EXPECT_FALSE(button().get_mapped());
}

TEST_F(PlaceholderGtkTest, ShowsWhatItIsToldAndAButtonOnlyWithATitle)
{
    placeholder.show({ .label = "Loading <b>a_b</b> & more", .button = "" });
    EXPECT_TRUE(label().get_mapped());
    EXPECT_EQ(label().get_text(), "Loading <b>a_b</b> & more");
    EXPECT_FALSE(button().get_mapped());
    EXPECT_TRUE(widgetsIn<Gtk::Image>(placeholder.widget()).front()->get_mapped());

    placeholder.show({ .label = "Away", .button = "Try_Again" });
    EXPECT_EQ(label().get_text(), "Away");
    EXPECT_TRUE(button().get_mapped());
    EXPECT_EQ(button().get_label(), "Try_Again");

    placeholder.hide();
    EXPECT_FALSE(placeholder.widget().get_mapped());
    placeholder.show({ .label = "Back", .button = "" });
    EXPECT_TRUE(placeholder.widget().get_mapped());
    EXPECT_FALSE(button().get_mapped());
}

TEST_F(PlaceholderGtkTest, TheButtonCallsTheLastHandlerAndNoneAfterAnEmptyOne)
{
    std::string pressed;
    placeholder.show({ .label = "Away", .button = "Retry" });
    placeholder.setButtonHandler([&] {
        pressed += 'a';
        placeholder.setButtonHandler([&] { pressed += 'b'; });
    });
    for (int press = 0; press < 3; ++press)
        button().clicked();
    EXPECT_EQ(pressed, "abb");
    placeholder.setButtonHandler({});
    button().clicked();
    EXPECT_EQ(pressed, "abb");
}

TEST_F(PlaceholderGtkTest, DoesWithoutAPicture)
{
    PlaceholderGtk plain("/nowhere");
    plain.show({ .label = "Loading", .button = "" });
    EXPECT_FALSE(widgetsIn<Gtk::Image>(plain.widget()).front()->get_visible());
}

}
