#include "mac/WorkspaceMac.h"

#include "mac/TextMac.h"

#import <AppKit/AppKit.h>

#include <utility>

namespace brevanta {

namespace {

// NSWorkspace calls the completion handler on a queue of its own.
void open(NSURL* url, std::function<void(OpenOutcome)> onEnd)
{
    [NSWorkspace.sharedWorkspace openURL:url
                           configuration:[NSWorkspaceOpenConfiguration configuration]
                       completionHandler:^(NSRunningApplication*, NSError* error) {
                           onEnd(error ? OpenOutcome::refused : OpenOutcome::opened);
                       }];
}

bool isFolder(NSString* path)
{
    BOOL isDirectory = NO;
    return path.absolutePath && [NSFileManager.defaultManager fileExistsAtPath:path isDirectory:&isDirectory]
        && isDirectory && ![NSWorkspace.sharedWorkspace isFilePackageAtPath:path];
}

}

WorkspaceMac::WorkspaceMac(MainLoop& mainLoop)
    : m_completions(mainLoop)
{
}

void WorkspaceMac::openUrl(const std::string& url, std::function<void(OpenOutcome)> onEnd)
{
    auto finish = m_completions.expect(std::move(onEnd));
    NSString* const text = stringFromUtf8(url);
    NSURL* const address = text ? [NSURL URLWithString:text] : nil;
    if (address && address.scheme.length > 0)
        open(address, std::move(finish));
    else
        finish(OpenOutcome::refused);
}

void WorkspaceMac::openFolder(const std::string& path, std::function<void(OpenOutcome)> onEnd)
{
    auto finish = m_completions.expect(std::move(onEnd));
    NSString* const text = stringFromUtf8(path);
    if (text && isFolder(text))
        open([NSURL fileURLWithPath:text isDirectory:YES], std::move(finish));
    else
        finish(OpenOutcome::refused);
}

}
