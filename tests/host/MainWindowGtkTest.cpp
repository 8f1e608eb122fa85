#include "gtk/MainWindowGtk.h"

#include "fakes/FakePorts.h"
#include "host/DisplayTest.h"

namespace brevanta {

namespace {

class MainWindowGtkTest : public DisplayTest {
protected:
    void SetUp() override
    {
        page.show();
        placeholder.show();
        mainWindow.build({ .title = "Title & <b>", .width = 640, .height = 480 });
    }

    static Glib::RefPtr<Gtk::Application> registeredApplication()
    {
        auto application = Gtk::Application::create("com.brevanta.test", Gio::APPLICATION_NON_UNIQUE);
        application->register_application();
        return application;
    }

    FakeSystemLog log;
    Gtk::Box page;
    Gtk::Box placeholder;
    Glib::RefPtr<Gtk::Application> application { registeredApplication() };
    MainWindowGtk mainWindow { *application.operator->(), BREVANTA_RESOURCES, { page, placeholder }, log };
};

}

TEST_F(MainWindowGtkTest, IsBuiltHiddenAndShownWithThePlaceholderOverThePage)
{
    EXPECT_FALSE(mainWindow.isVisible());
    mainWindow.showInFront();
    EXPECT_TRUE(mainWindow.isVisible());
    EXPECT_EQ(mainWindow.window().get_title(), "Title & <b>");
    ASSERT_TRUE(serveUntil([&] { return page.get_allocated_width() == 640 && page.get_allocated_height() == 480; }));
    EXPECT_EQ(placeholder.get_allocation(), page.get_allocation());
    const auto overlays = widgetsIn<Gtk::Overlay>(mainWindow.window());
    ASSERT_EQ(overlays.size(), 1u);
    EXPECT_EQ(overlays[0]->get_child(), &page);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(MainWindowGtkTest, ItsCloseButtonHidesItWithEverythingInIt)
{
    mainWindow.showInFront();
    mainWindow.window().close();
    EXPECT_TRUE(serveUntil([&] { return !mainWindow.isVisible(); }));
    mainWindow.showInFront();
    EXPECT_TRUE(page.get_mapped() && placeholder.get_mapped());
    mainWindow.hide();
    EXPECT_FALSE(mainWindow.isVisible());
}

TEST_F(MainWindowGtkTest, LogsThatThereIsNoPicture)
{
    const MainWindowGtk plain(*application.operator->(), "/nowhere", { page, placeholder }, log);
    EXPECT_EQ(log.lines.size(), 1u);
}

}
