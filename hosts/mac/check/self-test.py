#!/usr/bin/env python3
"""Proves that scripts/mac-check can fail: plants faults into copies of the Mac host and expects each to be found.

usage: self-test.py PROJECT

A fault counts as caught only when the check fails and says what is wrong. The copy without a fault must pass.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path


@dataclass
class Fault:
    name: str
    edited: str  # The file, in hosts/mac, that gets the fault.
    old: str  # Stands there exactly once.
    new: str
    checked: str  # The source file that is checked.
    finding: str  # What the check has to say, a regular expression.


FAULTS = [
    Fault("wrong selector", "WorkspaceMac.mm", "fileURLWithPath:text isDirectory:", "fileURLWithPath:text isFolder:",
        "WorkspaceMac.mm", r"no known class method for selector 'fileURLWithPath:isFolder:'"),
    Fault("wrong property", "MainWindowMac.mm", "window.releasedWhenClosed", "window.releasedOnClose",
        "MainWindowMac.mm", r"property 'releasedOnClose' not found"),
    Fault("wrong argument class", "NotificationCenterMac.mm", "content.title = displayString(notification.title)",
        "content.title = [NSDate date]", "NotificationCenterMac.mm", r"incompatible pointer types"),
    Fault("wrong block signature", "NotificationCenterMac.mm", "^(BOOL, NSError* error)",
        "^(NSError* error, BOOL)", "NotificationCenterMac.mm",
        r"cannot initialize a parameter of type .*an rvalue of type"),
    Fault("wrong enumeration", "ApplicationDelegateMac.mm", "return NSTerminateLater",
        "return NSApplicationActivationPolicyRegular", "ApplicationDelegateMac.mm", r"cannot initialize return object"),
    Fault("nil where none is allowed", "UserDefaultsMac.mm", "setObject:object forKey:displayString(key)",
        "setObject:object forKey:stringFromUtf8(key)", "UserDefaultsMac.mm", r"-Wnullable-to-nonnull-conversion"),
    Fault("unbridged cast", "UserDefaultsMac.mm", "(__bridge CFNumberRef)", "(CFNumberRef)", "UserDefaultsMac.mm",
        r"requires a bridged cast"),
    Fault("wrong log format", "SystemLogMac.mm", "%{public}s", "%{public}d", "SystemLogMac.mm", r"-Wformat"),
    Fault("self kept alive by a block", "ApplicationDelegateMac.mm", "    _observer->applicationShouldReopen();",
        "    void (^tell)(void) = ^{ _observer->applicationShouldReopen(); };\n    tell();",
        "ApplicationDelegateMac.mm", r"-Wimplicit-retain-self"),
    Fault("undeclared selector", "MainMenuMac.mm", "@selector(arrangeInFront:)", "@selector(arrangeToFront:)",
        "MainMenuMac.mm", r"undeclared selector 'arrangeToFront:'"),
    Fault("unimplemented port method", "ClockMac.h", "    [[nodiscard]] double wallSeconds() const override;\n", "",
        "main.mm", r"unimplemented pure virtual method 'wallSeconds'"),
    Fault("port method of another signature", "ClockMac.h", "double wallSeconds() const override",
        "double wallSeconds() override", "ClockMac.mm", r"marked 'override' hides virtual member function"),
    Fault("what Apple's C++ library lacks", "ClockMac.mm", "#include <time.h>\n",
        "#include <thread>\n#include <time.h>\nstatic std::jthread helper;\n", "ClockMac.mm",
        r"no type named 'jthread'"),
    Fault("misspelt optional delegate method", "MainWindowMac.mm", "- (BOOL)windowShouldClose:",
        "- (BOOL)windowShoudClose:", "MainWindowMac.mm", r"BrevantaWindowDelegate implements windowShoudClose:"),
    Fault("delegate method with a wrong second label", "ApplicationDelegateMac.mm", " hasVisibleWindows:(BOOL)",
        " visibleWindows:(BOOL)", "ApplicationDelegateMac.mm",
        r"implements applicationShouldHandleReopen:visibleWindows:"),
    Fault("protocol not adopted", "NotificationCenterMac.h", "NSObject <UNUserNotificationCenterDelegate>", "NSObject",
        "NotificationCenterMac.mm", r"incompatible pointer types assigning to 'id<UNUserNotificationCenterDelegate>"),
    Fault("action that no class implements", "StatusMenuMac.mm", "@implementation BrevantaMenuTarget\n",
        "@interface BrevantaGhost : NSObject\n- (void)haunt:(nullable id)sender;\n@end\n"
        "SEL haunting(void);\nSEL haunting(void) { return @selector(haunt:); }\n\n@implementation BrevantaMenuTarget\n",
        "StatusMenuMac.mm", r"no class implements haunt:"),
    Fault("declaration newer than the oldest macOS", "CMakeLists.txt", "MAC_MINIMUM 13.3", "MAC_MINIMUM 11.0",
        "ClockMac.mm", r"needs macOS 12\.0"),
    Fault("declaration that nothing uses", "check/Foundation/Foundation.h",
        "- (BOOL)hasSuffix:(NSString*)suffix;\n",
        "- (BOOL)hasSuffix:(NSString*)suffix;\n- (BOOL)hasPrefix:(NSString*)prefix;\n", "ClockMac.mm",
        r"does not use NSString's hasPrefix"),
    Fault("declaration without its source", "check/AppKit/Workspace.h",
        "// Documentation: NSRunningApplication; macOS 10.6.\n", "", "ClockMac.mm", r"names no documentation page"),
    Fault("nil returned as non-null on one path", "TextMac.mm",
        'return string ? static_cast<NSString* _Nonnull>(string) : @"";',
        "if (string)\n        return string;\n    return string;", "TextMac.mm",
        r"NullReturnedFromNonnull|Null returned"),
    Fault("misspelt event of a navigation", "NavigationDelegateMac.mm", " didCommitNavigation:", " didCommitNavigaton:",
        "NavigationDelegateMac.mm", r"BrevantaNavigationDelegate implements webView:didCommitNavigaton:"),
    Fault("misspelt question of the page", "UiDelegateMac.mm", "runOpenPanelWithParameters:", "runOpenPanelWithOptions:",
        "UiDelegateMac.mm",
        r"BrevantaUiDelegate implements webView:runOpenPanelWithOptions:initiatedByFrame:completionHandler:"),
    Fault("required protocol method with a wrong label", "ScriptHandlersMac.mm", "                 replyHandler:(",
        "                 answerHandler:(", "ScriptHandlersMac.mm",
        r"method 'userContentController:didReceiveScriptMessage:replyHandler:' in protocol .* not implemented"),
    Fault("decision of another kind", "NavigationDelegateMac.mm", "? WKNavigationResponsePolicyAllow",
        "? WKNavigationActionPolicyAllow", "NavigationDelegateMac.mm",
        r"cannot initialize a parameter of type 'WKNavigationResponsePolicy'"),
    Fault("kind of capture without an answer", "UiDelegateMac.mm",
        "    case WKMediaCaptureTypeCameraAndMicrophone:\n        return CaptureType::cameraAndMicrophone;\n", "",
        "UiDelegateMac.mm", r"'WKMediaCaptureTypeCameraAndMicrophone' not handled"),
    Fault("navigation that nobody keeps alive", "NavigationDelegateMac.mm", "CFBridgingRetain(navigation)",
        "(CFTypeRef)navigation", "NavigationDelegateMac.mm", r"requires a bridged cast"),
    Fault("text that may be missing as a URL", "UrlMac.mm", "URLWithString:static_cast<NSString* _Nonnull>(text)",
        "URLWithString:text", "UrlMac.mm", r"-Wnullable-to-nonnull-conversion"),
    Fault("inherited initializer left open", "PlaceholderMac.h",
        "- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_UNAVAILABLE;\n", "", "PlaceholderMac.mm",
        r"-Wobjc-designated-initializers"),
    Fault("button with an action of another name", "PlaceholderMac.mm", "@selector(pressButton:)",
        "@selector(pushButton:)", "PlaceholderMac.mm", r"undeclared selector 'pushButton:'"),
    Fault("event handler with a wrong second label", "ApplicationDelegateMac.mm",
        " withReplyEvent:(NSAppleEventDescriptor*)replyEvent", " withReply:(NSAppleEventDescriptor*)replyEvent",
        "ApplicationDelegateMac.mm", r"method definition for 'handleGetURLEvent:withReplyEvent:' not found"),
    Fault("property of another class", "WorkspaceMac.mm", "context.imageInterpolation",
        "context.interpolationQuality", "WorkspaceMac.mm", r"property 'interpolationQuality' not found"),
    Fault("misspelt answer of a properties request", "ExtensionRequestMac.mm", "foundProperties:(NSArray",
        "foundRecords:(NSArray", "ExtensionRequestMac.mm",
        r"BrevantaExtensionRequestDelegate implements request:foundRecords:"),
    Fault("required delegate method with a wrong second label", "ExtensionRequestMac.mm", "didFailWithError:(",
        "didEndWithError:(", "ExtensionRequestMac.mm",
        r"method 'request:didFailWithError:' in protocol .* not implemented"),
    Fault("result for a decision", "ExtensionRequestMac.mm", ": OSSystemExtensionReplacementActionCancel;",
        ": OSSystemExtensionRequestCompleted;", "ExtensionRequestMac.mm",
        r"different enumeration types|cannot initialize return object"),
    Fault("completion handler with a result that there is none of", "FilterSystemMac.mm",
        "removeFromPreferencesWithCompletionHandler:^(NSError* error)",
        "removeFromPreferencesWithCompletionHandler:^(BOOL removed, NSError* error)", "FilterSystemMac.mm",
        r"cannot initialize a parameter of type .*an rvalue of type"),
    Fault("error that may be missing", "FilterSystemMac.mm", "static_cast<NSError* _Nonnull>(error)", "error",
        "FilterSystemMac.mm", r"-Wnullable-to-nonnull-conversion"),
    Fault("status of another class", "ServiceManagerMac.mm", "status == SMAppServiceStatusEnabled",
        "status == NSTaskTerminationReasonExit", "ServiceManagerMac.mm", r"different enumeration types"),
    Fault("error information of another kind", "AdministratorMac.mm", "NSDictionary<NSString*, id>* information = nil;",
        "NSError* information = nil;", "AdministratorMac.mm",
        r"incompatible pointer types|cannot initialize a parameter|no matching function"),
    Fault("language for an instance of it", "AdministratorMac.mm", "languageInstance:instance",
        "languageInstance:language", "AdministratorMac.mm", r"cannot initialize a parameter of type .OSALanguageInstance"),
    Fault("initializer with a wrong label", "AdministratorMac.mm", "usingStorageOptions:OSANull",
        "usingOptions:OSANull", "AdministratorMac.mm", r"no visible @interface for 'OSAScript' declares the selector"),
    Fault("misspelt question of the updater", "UpdaterMac.mm", "shouldPostponeRelaunchForUpdate:",
        "shouldPostponeRelaunchOfUpdate:", "UpdaterMac.mm",
        r"BrevantaUpdaterDelegate implements updater:shouldPostponeRelaunchOfUpdate:untilInvokingBlock:"),
    Fault("block that would be given what nobody has", "UpdaterMac.mm", "untilInvokingBlock:(void (^)(void))",
        "untilInvokingBlock:(void (^)(BOOL))", "UpdaterMac.mm", r"too few arguments to block call|conflicting parameter"),
    Fault("updater's setting of another class", "UpdaterMac.mm", "{ m_controller.updater.automaticallyChecksForUpdates",
        "{ m_controller.automaticallyChecksForUpdates", "UpdaterMac.mm",
        r"property 'automaticallyChecksForUpdates' not found"),
    Fault("updater controller with a wrong label", "UpdaterMac.mm", "userDriverDelegate:nil", "driverDelegate:nil",
        "UpdaterMac.mm", r"no visible @interface for 'SPUStandardUpdaterController' declares the selector"),
    Fault("option of another name", "CrashReporterMac.mm", "sentry.enableNetworkBreadcrumbs",
        "sentry.enableHttpBreadcrumbs", "CrashReporterMac.mm", r"property 'enableHttpBreadcrumbs' not found"),
    Fault("breadcrumb in the place of an event", "CrashReporterMac.mm",
        "sentry.beforeSend = ^SentryEvent* _Nullable(SentryEvent* event)",
        "sentry.beforeSend = ^SentryBreadcrumb* _Nullable(SentryEvent* event)", "CrashReporterMac.mm",
        r"cannot initialize return object|incompatible block pointer types"),
    Fault("text that may be missing in a report", "CrashReporterMac.mm",
        "text(static_cast<NSString* _Nonnull>(value))", "text(value)", "CrashReporterMac.mm",
        r"-Wnullable-to-nonnull-conversion"),
    Fault("source file that the build does not know", "CMakeLists.txt", "    ClockMac.mm\n", "", "ClockMac.mm",
        r"does not name ClockMac\.mm"),
]


def check(project, root, files):
    command = [project / "scripts/mac-check", "--host", root, *(root / "mac" / name for name in files)]
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    return result.returncode, result.stdout


def try_fault(project, root, fault):
    """Empty when the fault was caught, else why not."""
    shutil.copytree(project / "hosts/mac", root / "mac")
    path = root / "mac" / fault.edited
    text = path.read_text(encoding="utf-8")
    if text.count(fault.old) != 1:
        return f"cannot be planted: {fault.edited} holds the text {text.count(fault.old)} times"
    path.write_text(text.replace(fault.old, fault.new), encoding="utf-8")
    status, output = check(project, root, [fault.checked])
    if status == 0:
        return "not caught"
    if not re.search(fault.finding, output):
        return f"the check failed for another reason:\n{output}"
    return ""


def main():
    project = Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory(prefix="mac-check-") as scratch, ThreadPoolExecutor(os.cpu_count()) as pool:
        roots = [Path(scratch) / str(number) for number in range(len(FAULTS) + 1)]
        shutil.copytree(project / "hosts/mac", roots[-1] / "mac")
        sound = pool.submit(check, project, roots[-1], sorted({fault.checked for fault in FAULTS}))
        reasons = list(pool.map(lambda pair: try_fault(project, *pair), zip(roots, FAULTS)))
        status, output = sound.result()
    missed = [f"{fault.name}: {reason}" for fault, reason in zip(FAULTS, reasons) if reason]
    if status != 0:
        missed.append(f"the copy without a fault does not pass:\n{output}")
    if missed:
        print("\n".join(missed))
        sys.exit(1)
    print(f"mac-check: {len(FAULTS)} faults planted, {len(FAULTS)} caught: ok")


main()
