// Declarations for checking the Mac host without a Mac; see docs/mac-check.md. Not part of any build.
// A part for each subject, as the framework's own header is divided.
#pragma once

#include <AppKit/Application.h>
#include <AppKit/Images.h>
#include <AppKit/Menus.h>
#include <AppKit/Panels.h>
#include <AppKit/Views.h>
#include <AppKit/Windows.h>
#include <AppKit/Workspace.h>
