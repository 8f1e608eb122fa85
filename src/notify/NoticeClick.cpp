#include "notify/NoticeClick.h"

#include "platform/NotificationCenter.h"

namespace brevanta {

NoticeClick noticeClick(
    const NotificationResponse& response, const std::function<bool(const std::string& url)>& isTrusted)
{
    if (response.identifier.empty())
        return {};
    const auto open = response.userInfo.find("open");
    if (open != response.userInfo.end() && isTrusted(open->second))
        return { .kind = NoticeClick::Kind::openUrl, .url = open->second };
    return { .kind = NoticeClick::Kind::bringWindowForward };
}

}
