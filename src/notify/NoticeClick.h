#pragma once

#include <functional>
#include <string>

namespace brevanta {

struct NotificationResponse;

struct NoticeClick {
    enum class Kind { nothing, bringWindowForward, openUrl };

    Kind kind { Kind::nothing };
    std::string url {}; // For `openUrl` only.

    bool operator==(const NoticeClick&) const = default;
};

// What a click on a notification leads to: the URL that it carries as "open" is opened when it is trusted, and
// otherwise the window comes forward and nothing else happens, since addresses arrive with the notices from outside. A
// response that names no notification leads to nothing. `isTrusted` is asked about any text at all.
[[nodiscard]] NoticeClick noticeClick(
    const NotificationResponse& response, const std::function<bool(const std::string& url)>& isTrusted);

}
