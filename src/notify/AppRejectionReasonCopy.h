#pragma once

#include "notify/NoticeRecords.h"

#include <string>
#include <string_view>

namespace brevanta {

// Which texts of `NoticeCopy` tell of a rejected application.
struct AppRejectionReasonCopy {
    [[nodiscard]] static std::string titleKey(PendingAppRejection::Kind kind);

    // The text takes {app}, the application's name.
    [[nodiscard]] static std::string titleKeyWithApp(PendingAppRejection::Kind kind);

    // A reason outside of the known set reads as "unspecified". The text takes {task}, the task's title, when the
    // record has one with a visible character; otherwise it takes no value.
    [[nodiscard]] static std::string bodyKey(const PendingAppRejection& rejection);
};

}
