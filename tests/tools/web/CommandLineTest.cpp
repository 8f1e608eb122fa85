#include "web/CommandLine.h"

#include <gtest/gtest.h>

namespace brevanta::web {

TEST(WebCommandLine, EveryOptionIsTaken)
{
    const auto parsed = CommandLine::parse({ "--listen", "1", "--second-listen", "2", "--http-listen", "0",
        "--certificate", "c", "--key", "k", "--other-certificate", "oc", "--other-key", "ok", "--control", "s",
        "--service-control", "sc", "--pages", "p", "--stdin", "--driver", "--log-requests" });
    ASSERT_TRUE(parsed) << parsed.error().message;
    EXPECT_EQ(parsed->purpose, CommandLine::Purpose::serve);
    EXPECT_EQ(parsed->port, 1);
    EXPECT_EQ(parsed->secondPort, 2);
    EXPECT_EQ(parsed->plainPort, 0);
    EXPECT_EQ(parsed->certificate.certificate, "c");
    EXPECT_EQ(parsed->certificate.key, "k");
    ASSERT_TRUE(parsed->otherCertificate);
    EXPECT_EQ(parsed->otherCertificate->certificate, "oc");
    EXPECT_EQ(parsed->otherCertificate->key, "ok");
    EXPECT_EQ(parsed->controlPath, "s");
    EXPECT_EQ(parsed->serviceControlPath, "sc");
    EXPECT_EQ(parsed->pagesDirectory, "p");
    EXPECT_TRUE(parsed->takesStandardInput && parsed->hasDriver && parsed->logsRequests);

    const auto making = CommandLine::parse({ "--make-certificate", "d", "--name", "n" });
    ASSERT_TRUE(making);
    EXPECT_EQ(making->purpose, CommandLine::Purpose::makeCertificate);
    EXPECT_EQ(making->certificateDirectory, "d");
    EXPECT_EQ(making->certificateStem, "n");
}

TEST(WebCommandLine, MistakesAreRefused)
{
    const std::vector<std::string> lines[] = { {}, { "--listen", "0" }, { "--certificate", "c", "--key", "k" },
        { "--listen", "0", "--certificate", "c" }, { "--listen", "65536", "--certificate", "c", "--key", "k" },
        { "--listen", "x", "--certificate", "c", "--key", "k" },
        { "--listen", "0", "--certificate", "c", "--key", "k", "--other-key", "o" },
        { "--listen", "0", "--certificate", "c", "--key", "k", "--name", "n" },
        { "--listen", "0", "--certificate", "c", "--key", "k", "extra" },
        { "--listen", "0", "--certificate", "c", "--key", "k", "--control" },
        { "--listen", "0", "--certificate", "c", "--key", "k", "--pages", "" } };
    for (const auto& line : lines)
        EXPECT_FALSE(CommandLine::parse(line)) << testing::PrintToString(line);
}

}
