#include "mac/AdministratorMac.h"

#include "base/Executor.h"
#include "install/InstallScript.h"
#include "mac/TextMac.h"

#import <OSAKit/OSAKit.h>

#include <utility>

namespace brevanta {

namespace {

using Result = std::expected<std::string, AdministratorError>;
using Kind = AdministratorError::Kind;

// "userCanceledErr" of MacErrors.h, which AppleScript gives when a question is cancelled, and
// "errAuthorizationCanceled" of Authorization.h.
constexpr int userCancelled = -128;
constexpr int authorizationCancelled = -60006;

Result failed(Kind kind, std::string message = {}, int number = 0)
{
    return std::unexpected(AdministratorError { .kind = kind, .message = std::move(message), .number = number });
}

std::string messageIn(NSDictionary<NSString*, id>* _Nullable information)
{
    const id message = [information objectForKey:OSAScriptErrorMessageKey];
    NSString* const text = [message isKindOfClass:NSString.class] ? static_cast<NSString*>(message) : nil;
    return utf8FromString(text);
}

Result failureIn(NSDictionary<NSString*, id>* information)
{
    const id value = [information objectForKey:OSAScriptErrorNumberKey];
    const int number = [value isKindOfClass:NSNumber.class] ? static_cast<NSNumber*>(value).intValue : 0;
    if (number == userCancelled || number == authorizationCancelled)
        return failed(Kind::cancelled);
    return failed(Kind::scriptFailed, messageIn(information), number);
}

// Waits for the user and for the script.
Result runAppleScript(const std::string& source)
{
    OSALanguage* const language = [OSALanguage languageForName:@"AppleScript"];
    if (!language)
        return failed(Kind::unavailable);
    // An instance of its own: the shared one belongs to the main thread.
    OSALanguageInstance* const instance = [OSALanguageInstance languageInstanceWithLanguage:language];
    if (!instance)
        return failed(Kind::unavailable);
    NSString* const text = stringFromUtf8(source);
    if (!text)
        return failed(Kind::notCompiled);
    OSAScript* const script = [[OSAScript alloc] initWithSource:text
                                                        fromURL:nil
                                               languageInstance:instance
                                            usingStorageOptions:OSANull];
    NSDictionary<NSString*, id>* information = nil;
    if (![script compileAndReturnError:&information])
        return failed(Kind::notCompiled, messageIn(information));
    NSAppleEventDescriptor* const result = [script executeAndReturnError:&information];
    if (result)
        return utf8FromString(result.stringValue);
    return information ? failureIn(information) : failed(Kind::noResult);
}

}

AdministratorMac::AdministratorMac(MainLoop& mainLoop, Executor& queue)
    : m_queue(queue)
    , m_completions(mainLoop)
{
}

void AdministratorMac::run(const std::string& script, const std::string& prompt, std::function<void(Result)> onEnd)
{
    m_queue.post([source = administratorAppleScript(script, prompt), finish = m_completions.expect(std::move(onEnd))] {
        @autoreleasepool {
            finish(runAppleScript(source));
        }
    });
}

}
