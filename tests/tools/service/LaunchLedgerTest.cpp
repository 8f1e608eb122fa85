#include "service/LaunchLedger.h"
#include "ServiceTesting.h"

#include <fstream>

namespace brevanta::service {

TEST(LaunchLedger, EveryLaunchIsLaterThanTheOneBefore)
{
    const TemporaryDirectory directory;
    const auto path = directory.file("state.json");
    EXPECT_EQ(takeNextLaunchOrder(path).value(), 1u);
    EXPECT_EQ(takeNextLaunchOrder(path).value(), 2u);
    EXPECT_EQ(takeNextLaunchOrder(path).value(), 3u);
}

TEST(LaunchLedger, AFileThatIsNoLedgerIsLeftAsItIs)
{
    const TemporaryDirectory directory;
    const auto path = directory.file("state.json");
    static constexpr const char* texts[] = { "", "notes", "[]", "{}", R"({"launch_order":-1})",
        R"({"launch_order":"1"})", R"({"launch_order":9007199254740991})" };
    for (const std::string text : texts) {
        std::ofstream(path) << text;
        EXPECT_FALSE(takeNextLaunchOrder(path)) << text;
        std::ifstream file(path);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), text);
    }
}

TEST(LaunchLedger, ADirectoryThatIsNotThereIsAnError)
{
    const TemporaryDirectory directory;
    EXPECT_FALSE(takeNextLaunchOrder(directory.file("missing/state.json")));
}

}
