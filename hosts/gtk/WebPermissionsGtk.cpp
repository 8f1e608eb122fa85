#include "gtk/WebPermissionsGtk.h"

#include "gtk/GObjectPtr.h"

#include <optional>

namespace brevanta {

namespace {

std::optional<CaptureType> captureType(WebKitPermissionRequest* request)
{
    if (!WEBKIT_IS_USER_MEDIA_PERMISSION_REQUEST(request))
        return std::nullopt;
    auto* const media = WEBKIT_USER_MEDIA_PERMISSION_REQUEST(request);
    if (webkit_user_media_permission_is_for_display_device(media))
        return std::nullopt;
    const bool camera = webkit_user_media_permission_is_for_video_device(media);
    const bool microphone = webkit_user_media_permission_is_for_audio_device(media);
    if (camera && microphone)
        return CaptureType::cameraAndMicrophone;
    if (camera)
        return CaptureType::camera;
    return microphone ? std::optional(CaptureType::microphone) : std::nullopt;
}

void answer(WebKitFileChooserRequest* request, const std::vector<std::string>& paths)
{
    if (paths.empty())
        return webkit_file_chooser_request_cancel(request);
    std::vector<const char*> texts;
    texts.reserve(paths.size() + 1);
    for (const auto& path : paths)
        texts.push_back(path.c_str());
    texts.push_back(nullptr);
    webkit_file_chooser_request_select_files(request, texts.data());
}

}

void decidePermission(WebUiDelegate& delegate, WebKitPermissionRequest* request, const FrameFacts& page)
{
    const auto type = captureType(request);
    if (type && delegate.decideCapture(*type, page) == CaptureDecision::grant)
        webkit_permission_request_allow(request);
    else
        webkit_permission_request_deny(request);
}

void chooseFiles(WebUiDelegate& delegate, WebKitFileChooserRequest* request, const FrameFacts& page)
{
    const bool allowsMultiple = webkit_file_chooser_request_get_select_multiple(request);
    // The request lives until it has been answered, however long the user takes.
    const std::shared_ptr<WebKitFileChooserRequest> kept(share(request));
    delegate.chooseFiles({ .allowsMultiple = allowsMultiple, .allowsDirectories = false }, page,
        [kept, allowsMultiple](std::vector<std::string> paths) {
            if (!allowsMultiple && paths.size() > 1)
                paths.resize(1);
            answer(kept.get(), paths);
        });
}

}
