#include "WebTool.h"

#include <fstream>
#include <iterator>

namespace brevanta::web {

class WebToolCertificate : public WebToolTest { };

TEST_F(WebToolCertificate, IsAcceptedForLocalhostOnlyByWhoeverTrustsIt)
{
    EXPECT_EQ(client().get(url("/")).status, 200u);
    const auto byAddress = client().get("https://127.0.0.1:" + port() + "/");
    EXPECT_TRUE(byAddress.isError(G_TLS_ERROR, G_TLS_ERROR_BAD_CERTIFICATE));
    const auto byOther = HttpClient(path("other.pem")).get(url("/"));
    EXPECT_TRUE(byOther.isError(G_TLS_ERROR, G_TLS_ERROR_BAD_CERTIFICATE));
}

static std::string contentsOf(const std::string& path)
{
    std::ifstream file(path);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

TEST_F(WebToolCertificate, ItsKeyIsForTheOwnerOnlyAndNewEachTime)
{
    using std::filesystem::perms;
    const auto key = path("own-key.pem");
    const auto before = contentsOf(key);
    std::filesystem::permissions(key, perms::owner_all | perms::group_all | perms::others_all);
    ASSERT_EQ(runTool({ "--make-certificate", path(""), "--name", "own" }), 0);
    EXPECT_EQ(std::filesystem::status(key).permissions(), perms::owner_read | perms::owner_write);
    EXPECT_NE(contentsOf(key), before);
    EXPECT_EQ(runTool({ "--make-certificate", path("nowhere") }), 1);
}

}
