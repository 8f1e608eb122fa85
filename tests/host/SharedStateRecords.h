#pragma once

#include "daemon/SharedBlockState.h"

#include <string>
#include <vector>

namespace brevanta {

// States whose files differ much in size, made without a decoder, so that a process that starts often starts fast.
inline std::shared_ptr<const BlockingStatus> statusWithDomains(int count)
{
    struct Lists {
        std::vector<std::string> texts;
        std::vector<std::string_view> views;
    };
    auto lists = std::make_shared<Lists>();
    for (int number = 0; number < count; ++number)
        lists->texts.push_back(std::to_string(number) + ".example.org");
    lists->views.assign(lists->texts.begin(), lists->texts.end());
    auto status = std::make_shared<BlockingStatus>();
    status->authToken = "token";
    status->blockedDomains = lists->views;
    status->listStorage = std::move(lists);
    return status;
}

inline std::shared_ptr<const BlockingStatus> smallStatus() { return statusWithDomains(0); }
inline std::shared_ptr<const BlockingStatus> largeStatus() { return statusWithDomains(8'000); }

inline std::string fileContentsOf(const BlockingStatus& status)
{
    std::string contents;
    appendSharedBlockState(contents, sharedBlockState(status));
    return contents;
}

}
