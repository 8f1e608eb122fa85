#include "base/Base64.h"

#include <gtest/gtest.h>
#include <string_view>
#include <vector>

namespace brevanta {

// RFC 4648, section 10, and bytes with the highest bit set.
TEST(Base64, EncodesAsTheStandardSays)
{
    for (const auto& [bytes, expected] : std::initializer_list<std::pair<std::string_view, const char*>> { { "", "" },
             { "f", "Zg==" }, { "fo", "Zm8=" }, { "foo", "Zm9v" }, { "foob", "Zm9vYg==" }, { "fooba", "Zm9vYmE=" },
             { "foobar", "Zm9vYmFy" }, { "\xff\xfe\xfd", "//79" } })
        EXPECT_EQ(base64(std::vector<std::uint8_t>(bytes.begin(), bytes.end())), expected);
}

}
