#include "mac/FilterSystemMac.h"

#include "mac/TextMac.h"

#import <NetworkExtension/NetworkExtension.h>

#include <utility>

namespace brevanta {

namespace {

NSString* const extensionIdentifier = @"com.brevanta.KestreluneMac.FilterExtension";
constexpr auto extensionInBundle
    = "/Contents/Library/SystemExtensions/com.brevanta.KestreluneMac.FilterExtension.systemextension";

std::expected<void, FilterError> outcomeFrom(NSError* _Nullable error)
{
    if (error)
        return std::unexpected(filterErrorFrom(static_cast<NSError* _Nonnull>(error)));
    return {};
}

FilterPreferences preferencesOf(NEFilterManager* manager)
{
    return {
        .isConfigured = manager.providerConfiguration != nil,
        .isEnabled = static_cast<bool>(manager.enabled),
    };
}

void configure(NEFilterManager* manager)
{
    NEFilterProviderConfiguration* const configuration = [[NEFilterProviderConfiguration alloc] init];
    configuration.filterSockets = YES;
    configuration.filterPackets = NO;
    manager.providerConfiguration = configuration;
    manager.localizedDescription = @"Brevanta";
    manager.enabled = YES;
}

std::optional<std::string> textIn(NSDictionary<NSString*, id>* dictionary, NSString* key)
{
    const id value = [dictionary objectForKey:key];
    return [value isKindOfClass:NSString.class] ? std::optional(utf8FromString(value)) : std::nullopt;
}

}

FilterSystemMac::FilterSystemMac(MainLoop& mainLoop)
    : m_mainLoop(mainLoop)
    , m_preferences(mainLoop)
    , m_outcomes(mainLoop)
    , m_properties(mainLoop)
{
}

FilterSystemMac::~FilterSystemMac()
{
    for (const auto& [number, delegate] : m_delegates)
        [delegate detach];
}

void FilterSystemMac::save(std::function<void(Outcome)> onEnd)
{
    const auto finish = m_outcomes.expect(std::move(onEnd));
    [NEFilterManager.sharedManager
        saveToPreferencesWithCompletionHandler:^(NSError* error) { finish(outcomeFrom(error)); }];
}

// Everybody changes the one shared manager: what was loaded is read before anything else can come in between.
void FilterSystemMac::loadPreferences(std::function<void(std::expected<FilterPreferences, FilterError>)> onEnd)
{
    const auto finish = m_preferences.expect(std::move(onEnd));
    [NEFilterManager.sharedManager loadFromPreferencesWithCompletionHandler:^(NSError* error) {
        const auto loaded = outcomeFrom(error);
        if (loaded)
            finish(preferencesOf(NEFilterManager.sharedManager));
        else
            finish(std::unexpected(loaded.error()));
    }];
}

// What is saved without having been loaded counts as stale and is refused.
void FilterSystemMac::enable(std::function<void(std::expected<void, FilterError>)> onEnd)
{
    loadPreferences([this, onEnd = std::move(onEnd)](const Preferences& loaded) {
        if (!loaded) {
            onEnd(std::unexpected(loaded.error()));
            return;
        }
        configure(NEFilterManager.sharedManager);
        save(onEnd);
    });
}

void FilterSystemMac::removeConfiguration(std::function<void(std::expected<void, FilterError>)> onEnd)
{
    loadPreferences([this, onEnd = std::move(onEnd)](const Preferences& loaded) {
        if (!loaded) {
            onEnd(std::unexpected(loaded.error()));
            return;
        }
        if (!loaded->isConfigured) {
            onEnd({});
            return;
        }
        const auto finish = m_outcomes.expect(onEnd);
        [NEFilterManager.sharedManager
            removeFromPreferencesWithCompletionHandler:^(NSError* error) { finish(outcomeFrom(error)); }];
    });
}

// The answer comes first; whether the request then ends like others, or has ended with it, makes no difference.
void FilterSystemMac::queryProperties(
    std::function<void(std::expected<std::vector<ExtensionRecord>, FilterError>)> onEnd)
{
    const std::uint64_t number = m_nextRequest++;
    const auto finish = m_properties.expect([this, number, onEnd = std::move(onEnd)](const Properties& properties) {
        m_delegates.erase(number);
        onEnd(properties);
    });
    submit(number,
        [OSSystemExtensionRequest propertiesRequestForExtension : extensionIdentifier
                queue : dispatch_get_main_queue()],
        {
            .replacing = [](const auto&, const auto&) { return ExtensionReplacement::cancel; },
            .needsUserApproval = [] {},
            .foundProperties = [finish](std::vector<ExtensionRecord> records) { finish(std::move(records)); },
            .ended = [finish](const auto& end) {
                if (end)
                    finish(std::vector<ExtensionRecord>());
                else
                    finish(std::unexpected(end.error()));
            }
        });
}

void FilterSystemMac::requestActivation(ExtensionRequestObserver observer)
{
    submit([OSSystemExtensionRequest activationRequestForExtension:extensionIdentifier queue:dispatch_get_main_queue()],
        std::move(observer));
}

void FilterSystemMac::requestDeactivation(ExtensionRequestObserver observer)
{
    submit([OSSystemExtensionRequest deactivationRequestForExtension:extensionIdentifier
                                                               queue:dispatch_get_main_queue()],
        std::move(observer));
}

// What needs no answer is told from the main loop: a modal loop inside a block of the main dispatch queue would hold up
// whatever else the system tells on that queue.
void FilterSystemMac::submit(OSSystemExtensionRequest* request, ExtensionRequestObserver observer)
{
    const std::uint64_t number = m_nextRequest++;
    const auto shared = std::make_shared<const ExtensionRequestObserver>(std::move(observer));
    submit(number, request,
        { .replacing =
                [shared](const auto& existing, const auto& bundled) {
                    return shared->replacing ? shared->replacing(existing, bundled) : ExtensionReplacement::replace;
                },
            .needsUserApproval =
                [this, shared] {
                    m_mainLoop.post(m_life.guard([shared] {
                        if (shared->needsUserApproval)
                            shared->needsUserApproval();
                    }));
                },
            .foundProperties = [](const auto&) {},
            .ended =
                [this, number, shared](const auto& end) {
                    m_mainLoop.post(m_life.guard([this, number, shared, end] {
                        if (m_delegates.erase(number))
                            shared->ended(end);
                    }));
                } });
}

void FilterSystemMac::submit(
    std::uint64_t number, OSSystemExtensionRequest* request, const ExtensionRequestEvents& events)
{
    BrevantaExtensionRequestDelegate* const delegate = [[BrevantaExtensionRequestDelegate alloc] initWithEvents:events];
    m_delegates.emplace(number, delegate);
    request.delegate = delegate;
    [OSSystemExtensionManager.sharedManager submitRequest:request];
}

std::optional<ExtensionRecord> FilterSystemMac::bundledExtension() const
{
    const auto path = utf8FromString(NSBundle.mainBundle.bundlePath) + extensionInBundle;
    NSDictionary<NSString*, id>* const facts = [NSBundle bundleWithPath:displayString(path)].infoDictionary;
    if (!facts)
        return std::nullopt;
    return ExtensionRecord {
        .isEnabled = false,
        .isAwaitingUserApproval = false,
        .isUninstalling = false,
        .shortVersion = textIn(facts, @"CFBundleShortVersionString"),
        .buildVersion = textIn(facts, @"CFBundleVersion"),
    };
}

}
