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

constexpr int largestIcon = 4096; // Pixels; 64 MiB.

std::optional<std::string> textIn(NSDictionary<NSString*, id>* dictionary, NSString* key)
{
    const id value = [dictionary objectForKey:key];
    return [value isKindOfClass:NSString.class] ? std::optional(utf8FromString(value)) : std::nullopt;
}

std::optional<RunningApplication> runningApplication(id _Nullable value)
{
    if (![value isKindOfClass:NSRunningApplication.class])
        return std::nullopt;
    NSRunningApplication* const application = value;
    std::string identifier = utf8FromString(application.bundleIdentifier);
    if (identifier.empty())
        return std::nullopt;
    return RunningApplication { .bundleIdentifier = std::move(identifier), .processId = application.processIdentifier };
}

NSBitmapImageRep* _Nullable createBitmap(NSInteger pixels)
{
    return [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                   pixelsWide:pixels
                                                   pixelsHigh:pixels
                                                bitsPerSample:8
                                              samplesPerPixel:4
                                                     hasAlpha:YES
                                                     isPlanar:NO
                                               colorSpaceName:NSDeviceRGBColorSpace
                                                  bytesPerRow:0
                                                 bitsPerPixel:0];
}

// Copied over the bitmap rather than blended with what its memory held before.
void draw(NSImage* image, NSGraphicsContext* context, int pixels)
{
    const auto side = static_cast<CGFloat>(pixels);
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext.currentContext = context;
    context.imageInterpolation = NSImageInterpolationHigh;
    [image drawInRect:NSRect {
        { 0, 0 }, { side, side }
    }
        fromRect:NSRect {}
        operation:NSCompositingOperationCopy
        fraction:1];
    [NSGraphicsContext restoreGraphicsState];
}

std::vector<std::uint8_t> bytesOf(NSData* _Nullable data)
{
    if (!data || data.length == 0)
        return {};
    const auto* const first = static_cast<const std::uint8_t*>(data.bytes);
    return { first, first + data.length };
}

}

WorkspaceMac::WorkspaceMac(MainLoop& mainLoop)
    : m_mainLoop(mainLoop)
    , m_completions(mainLoop)
{
}

WorkspaceMac::~WorkspaceMac() { stopObserving(); }

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

std::optional<ApplicationFacts> WorkspaceMac::applicationAt(const std::string& path) const
{
    NSString* const text = stringFromUtf8(path);
    NSBundle* const bundle = text && text.absolutePath ? [NSBundle bundleWithPath:text] : nil;
    std::string identifier = utf8FromString(bundle.bundleIdentifier);
    NSDictionary<NSString*, id>* const facts = bundle.infoDictionary;
    if (identifier.empty() || !facts)
        return std::nullopt;
    return ApplicationFacts {
        .bundleIdentifier = std::move(identifier),
        .displayName = textIn(facts, @"CFBundleDisplayName"),
        .name = textIn(facts, @"CFBundleName"),
    };
}

std::vector<std::uint8_t> WorkspaceMac::iconPng(const std::string& path, int pixels) const
{
    NSString* const text = stringFromUtf8(path);
    if (!text || !text.absolutePath || ![NSFileManager.defaultManager fileExistsAtPath:text])
        return {};
    NSBitmapImageRep* const bitmap = pixels > 0 && pixels <= largestIcon ? createBitmap(pixels) : nil;
    NSGraphicsContext* const context = bitmap ? [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap] : nil;
    if (!context)
        return {};
    draw([NSWorkspace.sharedWorkspace iconForFile:text], context, pixels);
    return bytesOf([bitmap representationUsingType:NSBitmapImageFileTypePNG properties:[NSDictionary dictionary]]);
}

void WorkspaceMac::setApplicationHandler(std::function<void(ApplicationChange, const RunningApplication&)> handler)
{
    stopObserving();
    m_registration.emplace();
    if (!handler)
        return;
    const auto telling = [&](ApplicationChange change) {
        return m_registration->guard(
            [handler, change](const RunningApplication& application) { handler(change, application); });
    };
    m_launches = observe(NSWorkspaceDidLaunchApplicationNotification, telling(ApplicationChange::launched));
    m_terminations = observe(NSWorkspaceDidTerminateApplicationNotification, telling(ApplicationChange::terminated));
}

// The block runs on the thread that posts the notification, so it only hands on.
id WorkspaceMac::observe(NSNotificationName name, std::function<void(const RunningApplication&)> tell)
{
    MainLoop* const mainLoop = &m_mainLoop;
    return [NSWorkspace.sharedWorkspace.notificationCenter
        addObserverForName:name
                    object:nil
                     queue:nil
                usingBlock:^(NSNotification* notification) {
                    const auto application
                        = runningApplication([notification.userInfo objectForKey:NSWorkspaceApplicationKey]);
                    if (application)
                        mainLoop->post([tell, application = *application] { tell(application); });
                }];
}

void WorkspaceMac::stopObserving()
{
    for (const id& observer : { std::exchange(m_launches, nil), std::exchange(m_terminations, nil) }) {
        if (observer)
            [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:observer];
    }
}

std::vector<RunningApplication> WorkspaceMac::runningApplications() const
{
    std::vector<RunningApplication> running;
    for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
        if (application.activationPolicy != NSApplicationActivationPolicyRegular)
            continue;
        if (auto known = runningApplication(application))
            running.push_back(*std::move(known));
    }
    return running;
}

std::optional<std::string> WorkspaceMac::displayNameOf(const std::string& bundleIdentifier) const
{
    NSString* const identifier = stringFromUtf8(bundleIdentifier);
    NSURL* const address
        = identifier ? [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:identifier] : nil;
    NSString* const path = address.path;
    NSBundle* const bundle = path ? [NSBundle bundleWithPath:path] : nil;
    for (NSString* const& key : { @"CFBundleDisplayName", @"CFBundleName" }) {
        const id value = [bundle objectForInfoDictionaryKey:key];
        std::string name = [value isKindOfClass:NSString.class] ? utf8FromString(value) : std::string();
        if (!name.empty())
            return name;
    }
    return std::nullopt;
}

}
