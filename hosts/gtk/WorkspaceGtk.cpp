#include "gtk/WorkspaceGtk.h"

#include "base/Executor.h"
#include "gtk/FileIcon.h"
#include "gtk/GObjectPtr.h"
#include "gtk/PropertyListGtk.h"

#include <algorithm>
#include <filesystem>
#include <gdk/gdk.h>
#include <gio/gdesktopappinfo.h>
#include <utility>

namespace brevanta {

namespace {

// GLib takes a space in a host name; RFC 3986 takes white space, NUL and control characters nowhere.
bool isUri(const std::string& text)
{
    const auto isForbidden = [](char c) { return (c >= 0 && c <= ' ') || c == 0x7F; };
    return std::ranges::none_of(text, isForbidden) && g_uri_is_valid(text.c_str(), G_URI_FLAGS_NONE, nullptr);
}

using OnEnd = std::function<void(OpenOutcome)>;

void launched(GObject*, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<OnEnd> onEnd(static_cast<OnEnd*>(data));
    const bool opened = g_app_info_launch_default_for_uri_finish(result, nullptr);
    (*onEnd)(opened ? OpenOutcome::opened : OpenOutcome::refused);
}

// Lets the application that is started come to the front.
GObjectPtr<GAppLaunchContext> launchContext()
{
    auto* const display = gdk_display_get_default();
    return GObjectPtr<GAppLaunchContext>(
        display ? G_APP_LAUNCH_CONTEXT(gdk_display_get_app_launch_context(display)) : g_app_launch_context_new());
}

void launch(const char* uri, OnEnd onEnd)
{
    g_app_info_launch_default_for_uri_async(uri, launchContext().get(), nullptr, launched, new OnEnd(std::move(onEnd)));
}

std::optional<std::string> textIn(const PropertyListTexts& texts, std::string_view key)
{
    const auto found = texts.find(key);
    return found != texts.end() ? std::optional(found->second) : std::nullopt;
}

std::optional<std::string> nonEmpty(std::optional<std::string> text)
{
    return text && !text->empty() ? std::move(text) : std::nullopt;
}

std::optional<std::string> nameInDesktopEntry(const std::string& bundleIdentifier)
{
    if (bundleIdentifier.empty() || bundleIdentifier.contains('/') || bundleIdentifier.contains('\0'))
        return std::nullopt;
    const GObjectPtr<GDesktopAppInfo> entry(g_desktop_app_info_new((bundleIdentifier + ".desktop").c_str()));
    const char* const name = entry ? g_app_info_get_name(G_APP_INFO(entry.get())) : nullptr;
    return nonEmpty(name ? std::optional<std::string>(name) : std::nullopt);
}

}

WorkspaceGtk::WorkspaceGtk(Executor& mainThread, std::filesystem::path root)
    : m_mainThread(mainThread)
    , m_root(std::move(root))
    , m_store(m_root)
{
}

void WorkspaceGtk::openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd)
{
    if (!isUri(url))
        return refuse(std::move(onEnd));
    launch(url.c_str(), std::move(onEnd));
}

void WorkspaceGtk::openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd)
{
    std::error_code error;
    if (path.contains('\0') || !std::filesystem::is_directory(path, error))
        return refuse(std::move(onEnd));
    const GLibPtr<char> uri(g_filename_to_uri(path.c_str(), nullptr, nullptr)); // Null for a relative path.
    if (!uri)
        return refuse(std::move(onEnd));
    launch(uri.get(), std::move(onEnd));
}

std::optional<ApplicationFacts> WorkspaceGtk::applicationAt(const std::string& path) const
{
    if (path.contains('\0') || !std::filesystem::path(path).is_absolute())
        return std::nullopt;
    const auto information = readPropertyList(std::filesystem::path(path) / "Contents/Info.plist");
    if (!information)
        return std::nullopt;
    auto identifier = textIn(*information, "CFBundleIdentifier");
    if (!identifier || identifier->empty())
        return std::nullopt;
    return ApplicationFacts { .bundleIdentifier = std::move(*identifier),
        .displayName = textIn(*information, "CFBundleDisplayName"),
        .name = textIn(*information, "CFBundleName") };
}

std::vector<std::uint8_t> WorkspaceGtk::iconPng(const std::string& path, int pixels) const
{
    return drawFileIcon(path, pixels);
}

void WorkspaceGtk::setApplicationHandler(std::function<void(ApplicationChange, const RunningApplication&)> handler)
{
    m_watch.reset();
    if (handler)
        m_watch.emplace(m_mainThread, m_store, [handler = std::move(handler)](const WorkspaceChange& change) {
            handler(change.change, change.application);
        });
}

std::vector<RunningApplication> WorkspaceGtk::runningApplications() const
{
    return m_store.workspace().value_or(WorkspaceStandIn()).running;
}

std::optional<std::string> WorkspaceGtk::displayNameOf(const std::string& bundleIdentifier) const
{
    std::error_code error;
    for (std::filesystem::directory_iterator entry(m_root / "Applications", error), end; !error && entry != end;
        entry.increment(error)) {
        if (entry->path().extension() != ".app")
            continue;
        const auto facts = applicationAt(entry->path().string());
        if (!facts || facts->bundleIdentifier != bundleIdentifier)
            continue;
        if (auto name = nonEmpty(facts->displayName).or_else([&] { return nonEmpty(facts->name); }))
            return name;
    }
    return nameInDesktopEntry(bundleIdentifier);
}

void WorkspaceGtk::refuse(std::function<void(OpenOutcome)> onEnd)
{
    m_mainThread.post([onEnd = std::move(onEnd)] { onEnd(OpenOutcome::refused); });
}

}
