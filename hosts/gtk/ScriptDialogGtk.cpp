#include "gtk/ScriptDialogGtk.h"

#include <utility>

namespace brevanta {

namespace {

PageDialogKind kindOf(WebKitScriptDialogType type)
{
    switch (type) {
    case WEBKIT_SCRIPT_DIALOG_CONFIRM:
        return PageDialogKind::confirm;
    case WEBKIT_SCRIPT_DIALOG_PROMPT:
        return PageDialogKind::prompt;
    case WEBKIT_SCRIPT_DIALOG_ALERT:
    case WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM:
        break;
    }
    return PageDialogKind::alert;
}

}

ScriptDialog keepOpen(WebKitScriptDialog* dialog)
{
    return { webkit_script_dialog_ref(dialog), [](WebKitScriptDialog* kept) {
                webkit_script_dialog_close(kept);
                webkit_script_dialog_unref(kept);
            } };
}

void showDialog(
    WebBrowserDelegate& delegate, const ScriptDialog& dialog, const FrameFacts& page, std::function<void()> onEnd)
{
    const auto type = webkit_script_dialog_get_dialog_type(dialog.get());
    if (type == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM) {
        webkit_script_dialog_confirm_set_confirmed(dialog.get(), TRUE);
        return onEnd();
    }
    const char* const text = webkit_script_dialog_get_message(dialog.get());
    delegate.showDialog({ .kind = kindOf(type), .text = text ? text : "" }, page,
        [dialog, type, onEnd = std::move(onEnd)](DialogAnswer answer) {
            if (type == WEBKIT_SCRIPT_DIALOG_CONFIRM)
                webkit_script_dialog_confirm_set_confirmed(dialog.get(), answer == DialogAnswer::accepted);
            onEnd();
        });
}

}
