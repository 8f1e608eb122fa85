#include "gtk/PlaceholderGtk.h"

#include "host/DisplayTest.h"

#include <algorithm>
#include <cmath>

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

    // The luminances of what the label shows, from the darkest to the brightest: WCAG 2.1, "relative luminance".
    std::vector<double> luminances()
    {
        int x = 0;
        int y = 0;
        label().translate_coordinates(window, 0, 0, x, y);
        const auto pixels = Gdk::Pixbuf::create(
            window.get_window(), x, y, label().get_allocated_width(), label().get_allocated_height());
        const auto linear = [](guint8 part) {
            const double share = part / 255.0;
            return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
        };
        std::vector<double> found;
        for (int row = 0; row < pixels->get_height(); ++row) {
            for (int column = 0; column < pixels->get_width(); ++column) {
                const auto* const pixel
                    = pixels->get_pixels() + row * pixels->get_rowstride() + column * pixels->get_n_channels();
                found.push_back(0.2126 * linear(pixel[0]) + 0.7152 * linear(pixel[1]) + 0.0722 * linear(pixel[2]));
            }
        }
        std::ranges::sort(found);
        return found;
    }

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

TEST_F(PlaceholderGtkTest, ItsWordsCanBeReadInLightAndDark)
{
    const auto look = loop.startTimer(0.05, TimerRepeat::forever, [] { }); // For `serveUntil` to look again.
    placeholder.show({ .label = "Brevanta can't be reached right now.", .button = "" });
    for (const bool dark : { false, true }) {
        Gtk::Settings::get_default()->property_gtk_application_prefer_dark_theme() = dark;
        std::vector<double> shown;
        EXPECT_TRUE(serveUntil([&] {
            shown = luminances();
            const double ground = shown.at(shown.size() / 2);
            return (ground < 0.2) == dark && shown.front() != shown.back();
        }));
        EXPECT_GE((shown.back() + 0.05) / (shown.front() + 0.05), 4.5) << (dark ? "dark" : "light");
    }
    Gtk::Settings::get_default()->property_gtk_application_prefer_dark_theme() = false;
}

TEST_F(PlaceholderGtkTest, DoesWithoutAPicture)
{
    PlaceholderGtk plain("/nowhere");
    plain.show({ .label = "Loading", .button = "" });
    EXPECT_FALSE(widgetsIn<Gtk::Image>(plain.widget()).front()->get_visible());
}

}
