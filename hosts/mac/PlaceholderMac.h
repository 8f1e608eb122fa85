#pragma once

#include "platform/Placeholder.h"

#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

// Icon, label and button on the window's own ground (documentation pages NSView and NSStackView).
@interface BrevantaPlaceholderView : NSView

- (instancetype)initWithFrame:(NSRect)frame NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_UNAVAILABLE;

// An empty button title shows no button.
- (void)showLabel:(NSString*)label button:(NSString*)button;

// Copied before it is called, so that it may replace itself.
@property (nonatomic) std::function<void()> buttonHandler;

- (void)pressButton:(nullable id)sender;

@end

namespace brevanta {

class PlaceholderMac final : public Placeholder {
public:
    PlaceholderMac();
    ~PlaceholderMac() override;

    PlaceholderMac(const PlaceholderMac&) = delete;
    PlaceholderMac& operator=(const PlaceholderMac&) = delete;

    void show(const PlaceholderContent& content) override;
    void hide() override;
    void setButtonHandler(std::function<void()> handler) override;

    [[nodiscard]] NSView* nativeView() const { return m_view; }

private:
    BrevantaPlaceholderView* m_view;
};

}

NS_ASSUME_NONNULL_END
