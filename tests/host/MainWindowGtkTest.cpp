#include "gtk/MainWindowGtk.h"

#include "fakes/FakePorts.h"
#include "gtk/WindowMenuGtk.h"
#include "host/DisplayTest.h"

namespace brevanta {

namespace {

class MainWindowGtkTest : public DisplayTest {
protected:
    void SetUp() override
    {
        page.show();
        placeholder.show();
        create();
    }

    static Glib::RefPtr<Gtk::Application> registeredApplication()
    {
        auto application = Gtk::Application::create("com.brevanta.test", Gio::APPLICATION_NON_UNIQUE);
        application->register_application();
        return application;
    }

    void create(const char* resources = BREVANTA_RESOURCES)
    {
        mainWindow.emplace(
            *application.operator->(), resources, MainWindowGtk::Contents { page, placeholder, menu }, defaults, log);
        mainWindow->build({ .title = "Title & <b>", .width = 640, .height = 480 });
    }

    [[nodiscard]] bool pageTakes(int width, int height)
    {
        return serveUntil([&] { return page.get_allocated_width() == width && page.get_allocated_height() == height; });
    }

    // Whether the window takes the key, rather than what has the focus in it.
    bool press(guint key)
    {
        return gtk_accel_groups_activate(G_OBJECT(mainWindow->window().gobj()), key, GDK_CONTROL_MASK);
    }

    FakeSystemLog log;
    FakeUserDefaults defaults;
    Gtk::Box page;
    Gtk::Box placeholder;
    WindowMenuGtk menu;
    Glib::RefPtr<Gtk::Application> application { registeredApplication() };
    std::optional<MainWindowGtk> mainWindow;
};

}

TEST_F(MainWindowGtkTest, IsBuiltHiddenAndShownWithThePlaceholderOverThePage)
{
    EXPECT_FALSE(mainWindow->isVisible());
    mainWindow->showInFront();
    EXPECT_TRUE(mainWindow->isVisible());
    EXPECT_EQ(mainWindow->window().get_title(), "Title & <b>");
    ASSERT_TRUE(pageTakes(640, 480));
    EXPECT_EQ(placeholder.get_allocation(), page.get_allocation());
    const auto overlays = widgetsIn<Gtk::Overlay>(mainWindow->window());
    ASSERT_EQ(overlays.size(), 1u);
    EXPECT_EQ(overlays[0]->get_child(), &page);
    EXPECT_TRUE(log.lines.empty());
    create("/nowhere");
    EXPECT_EQ(log.lines.size(), 1u) << "there is no picture";
}

TEST_F(MainWindowGtkTest, ItsCloseButtonAndItsKeyHideItWithEverythingInIt)
{
    for (const bool byKey : { false, true }) {
        mainWindow->showInFront();
        EXPECT_TRUE(page.get_mapped() && placeholder.get_mapped());
        if (byKey)
            EXPECT_TRUE(press(GDK_KEY_w));
        else
            mainWindow->window().close();
        EXPECT_TRUE(serveUntil([&] { return !mainWindow->isVisible(); }));
    }
}

TEST_F(MainWindowGtkTest, TheMenusKeysWorkInItWhileTheirItemsCanBeChosen)
{
    std::vector<int> chosen;
    menu.setChoiceHandler([&](MenuItemId id) { chosen.push_back(static_cast<int>(id)); });
    mainWindow->showInFront();
    const auto show = [&](bool canReload) {
        menu.show({ { { .id = MenuItemId { 1 }, .title = "Reload", .keyEquivalent = "r", .enabled = canReload },
            { .id = MenuItemId { 2 }, .title = "Quit", .keyEquivalent = "q" }, { .title = "Without a key" } } });
    };
    show(true);
    EXPECT_TRUE(press(GDK_KEY_r) && press(GDK_KEY_q));
    EXPECT_FALSE(press(GDK_KEY_a)) << "the page's text fields need it";
    show(false);
    EXPECT_FALSE(press(GDK_KEY_r));
    show(true);
    EXPECT_TRUE(press(GDK_KEY_r));
    EXPECT_EQ(chosen, (std::vector { 1, 2, 1 }));
    EXPECT_FALSE(menu.bar().get_mapped()) << "nobody has asked for it";
    menu.setVisibility(WindowMenuVisibility::shown);
    EXPECT_TRUE(menu.bar().get_mapped());
}

TEST_F(MainWindowGtkTest, ComesBackAsLargeAndWhereItWasAndIsNeverTooSmall)
{
    mainWindow->showInFront();
    ASSERT_TRUE(pageTakes(640, 480));
    mainWindow->window().resize(700, 500);
    mainWindow->window().move(40, 50);
    ASSERT_TRUE(pageTakes(700, 500));
    ASSERT_TRUE(serveUntil([&] {
        int x = 0;
        int y = 0;
        mainWindow->window().get_position(x, y);
        return x == 40 && y == 50;
    }));
    create(); // The next start.
    mainWindow->showInFront();
    ASSERT_TRUE(pageTakes(700, 500));
    int x = 0;
    int y = 0;
    mainWindow->window().get_position(x, y);
    EXPECT_EQ(std::pair(x, y), std::pair(40, 50));
    mainWindow->window().resize(1, 1);
    EXPECT_TRUE(pageTakes(leastContentSize.width, leastContentSize.height));
}

}
