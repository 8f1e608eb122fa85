#include "gtk/OpenPanelGtk.h"

#include "host/DisplayTest.h"
#include "support/TemporaryDirectory.h"

#include <fstream>
#include <optional>

namespace brevanta {

namespace {

using Paths = std::vector<std::string>;

class OpenPanelGtkTest : public DisplayTest {
protected:
    // The panels that can be seen.
    static std::vector<Gtk::FileChooserDialog*> panels()
    {
        std::vector<Gtk::FileChooserDialog*> shown;
        for (auto* const toplevel : Gtk::Window::list_toplevels()) {
            if (auto* const dialog = dynamic_cast<Gtk::FileChooserDialog*>(toplevel); dialog && dialog->get_visible())
                shown.push_back(dialog);
        }
        return shown;
    }

    void present(const OpenPanelRequest& request)
    {
        ended.reset();
        openPanel.present(request, [this](Paths paths) {
            EXPECT_FALSE(ended) << "ended twice";
            ended = std::move(paths);
        });
        EXPECT_TRUE(serveUntil([&] { return panels().size() == 1; }));
        EXPECT_FALSE(ended);
    }

    std::optional<Paths> answer(int response)
    {
        panels()[0]->response(response);
        EXPECT_FALSE(ended); // Never from inside of the signal.
        EXPECT_TRUE(serveUntil([&] { return ended.has_value(); }));
        EXPECT_TRUE(panels().empty());
        return ended;
    }

    // What comes of choosing the file or folder with this path.
    std::optional<Paths> choose(const OpenPanelRequest& request, const std::filesystem::path& path)
    {
        present(request);
        panels()[0]->set_filename(path.string());
        EXPECT_TRUE(serveUntil([&] { return panels()[0]->get_filename() == path.string(); }));
        return answer(Gtk::RESPONSE_ACCEPT);
    }

    std::filesystem::path folder(const char* name)
    {
        const auto path = directory.path() / name;
        std::filesystem::create_directory(path);
        return std::filesystem::canonical(path);
    }

    functional::TemporaryDirectory directory;
    Gtk::Window window;
    OpenPanelGtk openPanel { window, loop };
    std::optional<Paths> ended;
};

}

TEST_F(OpenPanelGtkTest, CancellingAndClosingChooseNothing)
{
    for (const int response : { Gtk::RESPONSE_CANCEL, Gtk::RESPONSE_DELETE_EVENT }) {
        present({ .title = "Choose", .directory = directory.path().string() });
        EXPECT_EQ(panels()[0]->get_title(), "Choose");
        EXPECT_EQ(answer(response), Paths {});
    }
}

TEST_F(OpenPanelGtkTest, AFileIsGivenWithItsSymbolicLinksResolved)
{
    const auto file = folder("real") / "file.txt";
    std::ofstream(file) << "text";
    const auto link = file.parent_path() / "link.txt";
    std::filesystem::create_symlink(file, link);
    EXPECT_EQ(choose({ .directory = file.parent_path().string() }, file), Paths { file.string() });
    EXPECT_EQ(choose({ .directory = file.parent_path().string() }, link), Paths { file.string() });
}

TEST_F(OpenPanelGtkTest, AnApplicationIsAFolderOfThatName)
{
    const auto application = folder("Chess.app");
    const auto plain = folder("Plain");
    const OpenPanelRequest request { .kind = OpenPanelKind::applications, .directory = directory.path().string() };
    EXPECT_EQ(choose(request, application), Paths { application.string() });
    EXPECT_EQ(choose(request, plain), Paths {});
}

TEST_F(OpenPanelGtkTest, StandsAboveAVisibleWindowOnly)
{
    present({});
    EXPECT_EQ(panels()[0]->get_transient_for(), nullptr);
    EXPECT_TRUE(panels()[0]->get_modal());
    (void)answer(Gtk::RESPONSE_CANCEL);
    window.show();
    present({ .allowsMultiple = true });
    EXPECT_EQ(panels()[0]->get_transient_for(), &window);
    EXPECT_TRUE(panels()[0]->get_select_multiple());
    (void)answer(Gtk::RESPONSE_CANCEL);
}

TEST_F(OpenPanelGtkTest, AnOpenPanelGoesWithItsOwnerWithoutEnding)
{
    bool hasEnded = false;
    {
        OpenPanelGtk shortLived(window, loop);
        shortLived.present({}, [&](const Paths&) { hasEnded = true; });
        EXPECT_TRUE(serveUntil([&] { return panels().size() == 1; }));
    }
    EXPECT_TRUE(panels().empty());
    EXPECT_FALSE(hasEnded);
}

}
