#include "gtk/FileIcon.h"
#include "support/TemporaryDirectory.h"

#include <fstream>
#include <gtest/gtest.h>

namespace brevanta {

TEST(FileIconTest, ADesktopHasAnIconForEveryKindOfFile)
{
    const functional::TemporaryDirectory folder;
    const auto bundle = folder.path() / "Plain.app";
    std::filesystem::create_directories(bundle / "Contents");
    std::ofstream(bundle / "Contents/Info.plist") << "<plist><dict/></plist>";
    const auto text = folder.path() / "notes.txt";
    std::ofstream(text) << "words";

    const auto ofProgram = drawFileIcon(bundle.string(), 48);
    const auto ofText = drawFileIcon(text.string(), 48);
    const auto ofFolder = drawFileIcon(folder.path().string(), 48);
    for (const auto& icon : { ofProgram, ofText, ofFolder }) {
        constexpr std::string_view signature = "\x89PNG\r\n\x1A\n";
        ASSERT_GT(icon.size(), 24U);
        EXPECT_EQ(std::string(icon.begin(), icon.begin() + signature.size()), signature);
        // Width and height are the first numbers of the header (RFC 2083, section 4.1.1).
        EXPECT_EQ(icon[19], 48);
        EXPECT_EQ(icon[23], 48);
    }
    EXPECT_NE(ofProgram, ofText);
    EXPECT_NE(ofProgram, ofFolder);
    EXPECT_TRUE(drawFileIcon((folder.path() / "missing").string(), 48).empty());
}

}
