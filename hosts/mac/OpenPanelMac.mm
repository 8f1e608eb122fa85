#include "mac/OpenPanelMac.h"

#include "mac/MainWindowMac.h"
#include "mac/TextMac.h"

#import <AppKit/AppKit.h>
#import <UniformTypeIdentifiers/UniformTypeIdentifiers.h>

#include <filesystem>
#include <utility>

namespace brevanta {

namespace {

NSOpenPanel* createPanel(const OpenPanelRequest& request)
{
    const bool forApplication = request.kind == OpenPanelKind::applications;
    NSOpenPanel* const panel = [NSOpenPanel openPanel];
    panel.canChooseFiles = YES;
    panel.canChooseDirectories = request.allowsDirectories && !forApplication;
    panel.allowsMultipleSelection = request.allowsMultiple && !forApplication;
    panel.resolvesAliases = YES;
    panel.treatsFilePackagesAsDirectories = NO;
    if (forApplication)
        panel.allowedContentTypes = [NSArray arrayWithObject:UTTypeApplicationBundle];
    if (!request.directory.empty())
        panel.directoryURL = [NSURL fileURLWithPath:displayString(request.directory) isDirectory:YES];
    if (!request.title.empty()) {
        panel.title = displayString(request.title);
        panel.message = displayString(request.title); // A sheet has no title bar.
    }
    return panel;
}

// The panel resolves aliases; links within a path are left to others.
std::string resolved(const std::string& path)
{
    std::error_code error;
    const auto target = std::filesystem::canonical(path, error);
    return error ? path : target.string();
}

std::vector<std::string> pathsFrom(NSArray<NSURL*>* urls)
{
    std::vector<std::string> paths;
    for (NSURL* url in urls) {
        if (auto path = utf8FromString(url.path); !path.empty())
            paths.push_back(resolved(path));
    }
    return paths;
}

}

OpenPanelMac::OpenPanelMac(MainLoop& mainLoop, const MainWindowMac& mainWindow)
    : m_mainWindow(mainWindow)
    , m_completions(mainLoop)
{
}

void OpenPanelMac::present(const OpenPanelRequest& request, std::function<void(std::vector<std::string>)> onEnd)
{
    NSOpenPanel* const panel = createPanel(request);
    const auto finish = m_completions.expect(std::move(onEnd));
    // The handler keeps the panel, and the panel lets go of the handler once it has called it.
    const auto completion = ^(NSModalResponse response) {
        finish(response == NSModalResponseOK ? pathsFrom(panel.URLs) : std::vector<std::string>());
    };
    NSWindow* const window = m_mainWindow.nativeWindow();
    if (window && window.visible)
        [panel beginSheetModalForWindow:window completionHandler:completion];
    else
        [panel beginWithCompletionHandler:completion];
}

}
