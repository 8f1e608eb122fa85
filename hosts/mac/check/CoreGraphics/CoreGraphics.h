// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

// Documentation: CGRect; macOS 10.0. NSRect and NSSize are the same types.
typedef double CGFloat;
typedef struct {
    CGFloat x;
    CGFloat y;
} CGPoint;
typedef struct {
    CGFloat width;
    CGFloat height;
} CGSize;
typedef struct {
    CGPoint origin;
    CGSize size;
} CGRect;

// Documentation: CGColorRef; macOS 10.0.
typedef struct CGColor* CGColorRef;
