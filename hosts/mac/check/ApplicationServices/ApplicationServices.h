// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
#pragma once

// Documentation: kInternetEventClass and kAEGetURL ("Cocoa Scripting Guide: Installing a Get URL Handler"); macOS 10.0.
enum { kInternetEventClass = 0x4755524C /* 'GURL' */, kAEGetURL = 0x4755524C /* 'GURL' */ };

// Documentation: keyDirectObject; macOS 10.0.
enum { keyDirectObject = 0x2D2D2D2D /* '----' */ };
