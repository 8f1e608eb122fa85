#include "base/Base64.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace brevanta {

// RFC 4648, section 10, and bytes with the highest bit set.
TEST(Base64, EncodesAndDecodesAsTheStandardSays)
{
    for (const auto& [bytes, expected] : std::initializer_list<std::pair<std::string_view, const char*>> { { "", "" },
             { "f", "Zg==" }, { "fo", "Zm8=" }, { "foo", "Zm9v" }, { "foob", "Zm9vYg==" }, { "fooba", "Zm9vYmE=" },
             { "foobar", "Zm9vYmFy" }, { "\xff\xfe\xfd", "//79" } }) {
        const std::vector<std::uint8_t> plain(bytes.begin(), bytes.end());
        EXPECT_EQ(base64(plain), expected);
        EXPECT_EQ(decodedBase64(expected), plain);
    }
}

TEST(Base64, RefusesWhatIsNotOfTheStandardsFirstAlphabetOrOfNoWholeGroups)
{
    for (const std::string text : { "Z", "Zg", "Zg=", "Zg===", "=",
             "==", "===", "====", "Z===", "Zm9v=", "Zg==Zg==", "Z=g=", "Zm9v\n", "Zm 9", "__79", "--79", "Zm9\xC3" })
        EXPECT_EQ(decodedBase64(text), std::nullopt) << text;
    EXPECT_EQ(decodedBase64("Zh=="), decodedBase64("Zg==")) << "bits that are left over";
}

}
