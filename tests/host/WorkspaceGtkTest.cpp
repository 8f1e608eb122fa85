#include "gtk/WorkspaceGtk.h"
#include "fakes/FakeMainLoop.h"
#include "functional/support/TemporaryDirectory.h"

#include <fstream>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <vector>

namespace brevanta {

namespace {

class WorkspaceGtkTest : public testing::Test {
protected:
    [[nodiscard]] auto recorder()
    {
        return [this](OpenOutcome outcome) { m_outcomes.push_back(outcome); };
    }

    // An application bundle with this information dictionary, and files in its Resources.
    [[nodiscard]] std::string bundle(
        const std::string& entries, const std::vector<std::pair<std::string, std::string>>& resources = {})
    {
        const auto path = m_folder.path() / ("Program " + std::to_string(++m_bundles) + ".app");
        std::filesystem::create_directories(path / "Contents/Resources");
        std::ofstream(path / "Contents/Info.plist") << "<plist version=\"1.0\"><dict>" << entries << "</dict></plist>";
        for (const auto& [name, contents] : resources)
            std::ofstream(path / "Contents/Resources" / name, std::ios::binary) << contents;
        return path.string();
    }

    [[nodiscard]] std::string iconBundle(const std::string& iconFile, const std::string& resource)
    {
        return bundle("<key>CFBundleIconFile</key><string>" + iconFile + "</string>", { { resource, redWideDrawing } });
    }

    static constexpr auto redWideDrawing
        = R"(<svg xmlns="http://www.w3.org/2000/svg" width="64" height="32"><rect width="64" height="32" fill="#f00"/></svg>)";

    functional::TemporaryDirectory m_folder;
    int m_bundles { 0 };
    FakeClock m_clock;
    FakeMainLoop m_loop { m_clock };
    WorkspaceGtk m_workspace { m_loop, m_folder.path() };
    std::vector<OpenOutcome> m_outcomes;
};

}

namespace {

struct PixbufUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Picture = std::unique_ptr<GdkPixbuf, PixbufUnref>;

Picture decoded(const std::vector<std::uint8_t>& png)
{
    const std::unique_ptr<GdkPixbufLoader, PixbufUnref> loader(gdk_pixbuf_loader_new_with_type("png", nullptr));
    const bool written = gdk_pixbuf_loader_write(loader.get(), png.data(), png.size(), nullptr);
    const bool closed = gdk_pixbuf_loader_close(loader.get(), nullptr);
    auto* const picture = gdk_pixbuf_loader_get_pixbuf(loader.get());
    if (!written || !closed || !picture)
        return nullptr;
    return Picture(static_cast<GdkPixbuf*>(g_object_ref(picture)));
}

// Red, green, blue and alpha.
std::uint32_t pixel(GdkPixbuf* picture, int x, int y)
{
    const auto* const sample = gdk_pixbuf_read_pixels(picture)
        + static_cast<std::ptrdiff_t>(y) * gdk_pixbuf_get_rowstride(picture) + static_cast<std::ptrdiff_t>(x) * 4;
    return static_cast<std::uint32_t>(sample[0]) << 24 | static_cast<std::uint32_t>(sample[1]) << 16
        | static_cast<std::uint32_t>(sample[2]) << 8 | sample[3];
}

}

TEST_F(WorkspaceGtkTest, RefusesAMalformedUrlOnceAndAfterTheCall)
{
    for (const auto& url :
        { std::string(), std::string("no scheme"), std::string("//host/path"), std::string("http://a b/"),
            std::string("http://[::1"), std::string("http://a/\0b", 11), std::string(" https://a/") }) {
        m_outcomes.clear();
        m_workspace.openUrl(url, recorder());
        EXPECT_TRUE(m_outcomes.empty()) << url;
        m_loop.runPosted();
        EXPECT_EQ(m_outcomes, std::vector { OpenOutcome::refused }) << url;
    }
}

TEST_F(WorkspaceGtkTest, RefusesAPathThatIsNoFolderOnceAndAfterTheCall)
{
    const functional::TemporaryDirectory folder;
    const auto file = folder.path() / "file";
    std::ofstream(file) << "x";
    for (const auto& path : { std::string(), file.string(), (folder.path() / "missing").string(), std::string("."),
             folder.path().string() + '\0' + "x" }) {
        m_outcomes.clear();
        m_workspace.openFolder(path, recorder());
        EXPECT_TRUE(m_outcomes.empty()) << path;
        m_loop.runPosted();
        EXPECT_EQ(m_outcomes, std::vector { OpenOutcome::refused }) << path;
    }
}

TEST_F(WorkspaceGtkTest, ReadsWhatAnApplicationSaysOfItself)
{
    const auto full = bundle("<key>CFBundleIdentifier</key><string>com.example.Full</string><key>CFBundleName</key>"
                             "<string>Full</string><key>CFBundleDisplayName</key><string>F &amp; L</string>");
    EXPECT_EQ(m_workspace.applicationAt(full), (ApplicationFacts { "com.example.Full", "F & L", "Full" }));
    EXPECT_EQ(m_workspace.applicationAt(full + "/"), m_workspace.applicationAt(full));
    const auto bare = bundle("<key>CFBundleIdentifier</key><string>com.example.Bare</string>");
    EXPECT_EQ(m_workspace.applicationAt(bare), (ApplicationFacts { "com.example.Bare", std::nullopt, std::nullopt }));

    for (const auto& none : { bundle("<key>CFBundleName</key><string>Nameless</string>"),
             bundle("<key>CFBundleIdentifier</key><string></string>"),
             bundle("<key>CFBundleIdentifier</key><integer>5</integer>"), full + '\0', full + "/Contents",
             std::filesystem::path(full).lexically_relative(std::filesystem::current_path()).string(),
             m_folder.path().string(), std::string(), std::string("/nonexistent") })
        EXPECT_EQ(m_workspace.applicationAt(none), std::nullopt) << none;
}

TEST_F(WorkspaceGtkTest, APipeInThePlaceOfTheDictionaryHoldsNobodyUp)
{
    const auto path = bundle("");
    const auto dictionary = path + "/Contents/Info.plist";
    std::filesystem::remove(dictionary);
    ASSERT_EQ(::mkfifo(dictionary.c_str(), 0600), 0);
    EXPECT_EQ(m_workspace.applicationAt(path), std::nullopt);
}

TEST_F(WorkspaceGtkTest, ABundlesOwnIconIsDrawnInTheMiddleOfATransparentSquare)
{
    struct Case {
        const char* iconFile;
        const char* resource;
    };
    for (const auto& [iconFile, resource] : { Case { "icon.svg", "icon.svg" }, Case { "icon", "icon.svg" } }) {
        const auto picture = decoded(m_workspace.iconPng(iconBundle(iconFile, resource), 48));
        ASSERT_TRUE(picture) << iconFile;
        EXPECT_EQ(gdk_pixbuf_get_width(picture.get()), 48);
        EXPECT_EQ(gdk_pixbuf_get_height(picture.get()), 48);
        ASSERT_TRUE(gdk_pixbuf_get_has_alpha(picture.get()));
        EXPECT_EQ(pixel(picture.get(), 24, 24), 0xFF0000FFU);
        EXPECT_EQ(pixel(picture.get(), 1, 24), 0xFF0000FFU) << "as wide as the square";
        EXPECT_EQ(pixel(picture.get(), 24, 6) & 0xFFU, 0U) << "and half as high";
        EXPECT_EQ(pixel(picture.get(), 24, 42) & 0xFFU, 0U);
    }
}

TEST_F(WorkspaceGtkTest, WithoutADisplayThereIsNoIconButABundlesOwn)
{
    const auto good = iconBundle("icon", "icon.svg");
    const auto outside = iconBundle("../outside", "icon.svg");
    std::ofstream(outside + "/Contents/outside.svg") << redWideDrawing;
    const auto pipe = iconBundle("pipe", "icon.svg");
    ASSERT_EQ(::mkfifo((pipe + "/Contents/Resources/pipe").c_str(), 0600), 0);
    struct Case {
        std::string path;
        int pixels;
    };
    const Case cases[] = { { good, 0 }, { good, -1 }, { good, 100'000 }, { good + '\0', 16 },
        { std::filesystem::path(good).lexically_relative(std::filesystem::current_path()).string(), 16 },
        { outside, 16 }, { pipe, 16 }, { iconBundle("icon.svg/../icon", "icon.svg"), 16 },
        { iconBundle("missing", "icon.svg"), 16 }, { iconBundle("..", "icon.svg"), 16 },
        { bundle("<key>CFBundleIconFile</key><string>icon</string>", { { "icon", "no picture" } }), 16 },
        { bundle(""), 16 }, { m_folder.path().string(), 16 }, { "/nonexistent", 16 }, { "", 16 } };
    for (const auto& [path, pixels] : cases)
        EXPECT_TRUE(m_workspace.iconPng(path, pixels).empty()) << path << ' ' << pixels;
    EXPECT_FALSE(m_workspace.iconPng(good, 1).empty());
    EXPECT_FALSE(m_workspace.iconPng(good, 1024).empty());
}

TEST_F(WorkspaceGtkTest, TheBuiltBundleSaysWhatItIs)
{
    EXPECT_EQ(m_workspace.applicationAt(BREVANTA_BUILT_BUNDLE),
        (ApplicationFacts { "com.brevanta.KestreluneMac", "Brevanta", "Brevanta" }));
    EXPECT_FALSE(m_workspace.iconPng(BREVANTA_BUILT_BUNDLE, 32).empty());
}

}
