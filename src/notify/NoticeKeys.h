#pragma once

#include <string_view>

// The keys under which the notices' texts stand in the tables, but for those of `AppRejectionReasonCopy`.
namespace brevanta::noticeKeys {

inline constexpr std::string_view taskResumedTitle { "macApp.notice.taskResumed.title" };
inline constexpr std::string_view taskResumedBody { "macApp.notice.taskResumed.body" };
inline constexpr std::string_view taskResumedBodyWithTask { "macApp.notice.taskResumed.body.task" }; // {task}
inline constexpr std::string_view taskResumedBodyWithApp { "macApp.notice.taskResumed.body.app" }; // {app}
inline constexpr std::string_view autoTrackStartTitle { "macApp.notice.autoTrackStart.title" };
inline constexpr std::string_view autoTrackStartBody { "macApp.notice.autoTrackStart.body" }; // {app}
inline constexpr std::string_view autoTrackStopTitle { "macApp.notice.autoTrackStop.title" };
inline constexpr std::string_view autoTrackStopBody { "macApp.notice.autoTrackStop.body" }; // {app}
inline constexpr std::string_view blockingServiceOffTitle { "macApp.notice.switchedOff.blockingService.title" };
inline constexpr std::string_view blockingServiceOffBody { "macApp.notice.switchedOff.blockingService.body" };
inline constexpr std::string_view contentFilterOffTitle { "macApp.notice.switchedOff.contentFilter.title" };
inline constexpr std::string_view contentFilterOffBody { "macApp.notice.switchedOff.contentFilter.body" };

}
