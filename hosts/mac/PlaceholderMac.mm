#include "mac/PlaceholderMac.h"

#include "mac/TextMac.h"

#import <QuartzCore/QuartzCore.h>

#include <utility>

namespace {

constexpr CGFloat iconSize = 96; // Points, as all of these.
constexpr CGFloat labelSize = 15;
constexpr CGFloat spacing = 14;

NSImageView* _Nullable createIconView()
{
    NSImage* const icon = [NSImage imageNamed:NSImageNameApplicationIcon];
    if (!icon)
        return nil;
    NSImageView* const view = [NSImageView imageViewWithImage:icon];
    view.imageScaling = NSImageScaleProportionallyUpOrDown;
    [view.widthAnchor constraintEqualToConstant:iconSize].active = YES;
    [view.heightAnchor constraintEqualToConstant:iconSize].active = YES;
    return view;
}

NSTextField* createLabel()
{
    NSTextField* const label = [NSTextField labelWithString:@""];
    label.font = [NSFont systemFontOfSize:labelSize];
    label.textColor = NSColor.secondaryLabelColor;
    label.alignment = NSTextAlignmentCenter;
    return label;
}

// From top to bottom.
NSStackView* createStack(NSTextField* label, NSButton* button)
{
    NSMutableArray<NSView*>* const views = [NSMutableArray array];
    if (NSImageView* const icon = createIconView())
        [views addObject:icon];
    [views addObject:label];
    [views addObject:button];
    NSStackView* const stack = [NSStackView stackViewWithViews:views];
    stack.orientation = NSUserInterfaceLayoutOrientationVertical;
    stack.alignment = NSLayoutAttributeCenterX;
    stack.spacing = spacing;
    stack.translatesAutoresizingMaskIntoConstraints = NO;
    return stack;
}

}

@implementation BrevantaPlaceholderView {
    NSStackView* _stack;
    NSTextField* _label;
    NSButton* _button;
}

- (instancetype)initWithFrame:(NSRect)frame
{
    if ((self = [super initWithFrame:frame])) {
        self.wantsLayer = YES;
        _label = createLabel();
        _button = [NSButton buttonWithTitle:@"" target:self action:@selector(pressButton:)];
        _stack = createStack(_label, _button);
        _stack.hidden = YES; // Until there is something to show.
        [self addSubview:_stack];
        [_stack.centerXAnchor constraintEqualToAnchor:self.centerXAnchor].active = YES;
        [_stack.centerYAnchor constraintEqualToAnchor:self.centerYAnchor].active = YES;
    }
    return self;
}

- (BOOL)wantsUpdateLayer
{
    return YES;
}

// Called again when the appearance changes; the color is that of the appearance at the time.
- (void)updateLayer
{
    self.layer.backgroundColor = NSColor.windowBackgroundColor.CGColor;
}

- (void)showLabel:(NSString*)label button:(NSString*)button
{
    _label.stringValue = label;
    _button.title = button;
    _button.hidden = button.length == 0;
    _stack.hidden = NO;
}

- (void)pressButton:(nullable id)sender
{
    const auto handler = self.buttonHandler;
    if (handler)
        handler();
}

@end

namespace brevanta {

PlaceholderMac::PlaceholderMac()
    : m_view([[BrevantaPlaceholderView alloc] initWithFrame:NSRect {}])
{
}

PlaceholderMac::~PlaceholderMac() { m_view.buttonHandler = nullptr; }

void PlaceholderMac::show(const PlaceholderContent& content)
{
    [m_view showLabel:displayString(content.label) button:displayString(content.button)];
    m_view.hidden = NO;
}

void PlaceholderMac::hide() { m_view.hidden = YES; }

void PlaceholderMac::setButtonHandler(std::function<void()> handler) { m_view.buttonHandler = std::move(handler); }

}
