#!/usr/bin/env python3
"""Checks that nothing in src/ points upwards.

    check-layering.py SRC         check a source tree; exit status 1 and one line for each violation
    check-layering.py --self-test prove on planted violations that each rule finds what it is for

The core includes nothing of a host and no header of one system's user interface, asks nowhere which system it is
compiled for, and each module includes only modules on its own rung of the ladder or on a lower one.
"""

import pathlib
import re
import sys
import tempfile

# From the lowest rung to the highest; modules on one rung may include each other.
LADDER = [
    ["base"],
    ["platform"],
    ["notify"],
    ["daemon"],
    ["install"],
    ["filter"],
    ["update", "nativehost", "crash", "track"],
    ["setup"],
    ["web"],
    ["menubar"],
    ["app"],
    ["diagnosis"],
]
RUNG = {module: rung for rung, modules in enumerate(LADDER) for module in modules}

SOURCE_SUFFIXES = {".h", ".hpp", ".c", ".cc", ".cpp", ".inc", ".m", ".mm"}
PORTABLE_SUFFIXES = SOURCE_SUFFIXES - {".m", ".mm"}

# Only the reading of these stands in preprocessor lines, so a comment may name them.
PLATFORM_MACRO = re.compile(
    r"\b(__APPLE__|__MACH__|__linux__|__linux|linux|__unix__|__gnu_linux__|__FreeBSD__|_WIN32|_WIN64|_MSC_VER|"
    r"__OBJC__|TARGET_OS_\w+|__GLIBC__)\b"
)
INCLUDE = re.compile(r'^\s*#\s*(?:include|import|include_next)\s*(?:"([^"]+)"|<([^>]+)>)')
HAS_INCLUDE = re.compile(r'__has_include(?:_next)?\s*\(\s*["<]([^">]+)[">]')
CONDITION = re.compile(r"^\s*#\s*(?:if|ifdef|ifndef|elif|elifdef|elifndef|define)\b(.*)")

# Headers that belong to a user interface or to one system's frameworks.
SYSTEM_HEADER = re.compile(
    r"^(AppKit|Cocoa|Foundation|CoreFoundation|WebKit|UserNotifications|NetworkExtension|SystemExtensions|"
    r"ServiceManagement|OSAKit|Security|IOKit|dispatch|objc|mach|xpc|os|gtk|gtkmm|gdk|gdkmm|gio|giomm|glib|glibmm|"
    r"gobject|webkit2|webkit|jsc|pango|cairo|X11|xcb|libayatana-appindicator|libnotify)(/|$)|"
    r"^(gtk|gtkmm|gdkmm|giomm|glibmm|glib|glib-object|glib-unix|Availability|AvailabilityMacros|TargetConditionals|"
    r"windows)\.h$|^(gtkmm|giomm|glibmm|gdkmm)"
)


def logical_lines(text):
    """The lines without comments, continuation lines joined, each with its number."""
    blank = lambda match: re.sub(r"[^\n]", " ", match.group(0)) if match.group(0)[0] == "/" else match.group(0)
    text = re.sub(r'/\*.*?\*/|//[^\n]*|"(?:\\.|[^"\\\n])*"', blank, text, flags=re.S)
    pending, start = "", 0
    for number, line in enumerate(text.split("\n"), 1):
        start = start or number
        if line.endswith("\\"):
            pending += line[:-1] + " "
            continue
        yield start, pending + line
        pending, start = "", 0


def included_module(source, file, target):
    """The module that a quoted include leads into; None when it leads out of the core."""
    beside = (file.parent / target).resolve()
    below_root = (source / target).resolve()
    for path in (beside, below_root):
        if path.is_relative_to(source) and path.exists():
            return path.relative_to(source).parts[0]
    first = pathlib.PurePosixPath(target).parts[0]
    return first if first in RUNG and "/" in target else None


def check_include(source, file, module, quoted, angled):
    target = quoted or angled
    parts = pathlib.PurePosixPath(target).parts
    if "hosts" in parts or ".." in parts:
        return f'includes "{target}", which leads out of the core'
    if SYSTEM_HEADER.search(target):
        return f"includes <{target}>, which belongs to one system"
    other = included_module(source, file, target)
    if other is None:
        # Third-party headers come in angle brackets; a quoted one that is not ours can only be a host's.
        return f'includes "{target}", which is not in the core' if quoted else None
    if other not in RUNG:
        return f'includes "{target}" of the module {other}, which is not on the ladder'
    if RUNG[other] > RUNG[module]:
        return f'includes "{target}", but {module} stands below {other}'
    return None


def check_file(source, file):
    module = file.relative_to(source).parts[0]
    if file.suffix not in PORTABLE_SUFFIXES:
        yield 1, f"is no portable source ({file.suffix})"
    if module not in RUNG or file.parent == source:
        yield 1, "belongs to no module of the ladder"
        return
    for number, line in logical_lines(file.read_text(encoding="utf-8")):
        include = INCLUDE.match(line)
        if include:
            problem = check_include(source, file, module, *include.groups())
            if problem:
                yield number, problem
        condition = CONDITION.match(line)
        if not condition:
            continue
        for macro in PLATFORM_MACRO.findall(condition.group(1)):
            yield number, f"asks for the system it is compiled for ({macro})"
        for header in HAS_INCLUDE.findall(condition.group(1)):
            if SYSTEM_HEADER.search(header):
                yield number, f"asks for the header of one system ({header})"


def violations(source):
    source = source.resolve()
    files = sorted(path for path in source.rglob("*") if path.suffix in SOURCE_SUFFIXES)
    if not files:
        return [f"{source}: there is no source to check"]
    return [f"{file}:{number}: {problem}" for file in files for number, problem in check_file(source, file)]


PLANTED = [
    # file, text, words of the expected line or None when nothing is wrong
    ("base/Good.h", "#pragma once\n#include <string>\n// hosts/gtk and __APPLE__ may be named here\n", None),
    ("menubar/Good.cpp", '#include "base/Good.h"\n#include "menubar/Good.h"\n', None),
    ("menubar/Good.h", '/* #include "app/Up.h" */\nconst char* text = "__linux__ // TARGET_OS_MAC";\n', None),
    ("update/Good.cpp", '#include "track/Good.h"\n', None),
    ("track/Good.h", '#include "filter/Good.h"\n', None),
    ("filter/Good.h", "#include <simdjson.h>\n#include <nlohmann/json.hpp>\n", None),
    ("app/Good.cpp", '#include "menubar/Good.h"\n#include "web/Good.h"\n', None),
    ("web/Good.h", '#include "setup/Good.h"\n', None),
    ("setup/Good.h", '#include "update/Good.h"\n', None),
    ("update/Good.h", "#if defined(__cpp_lib_expected)\n#endif\n", None),
    ("base/Up.h", '#include "platform/Clock.h"\n', "base stands below platform"),
    ("platform/Clock.h", '#include "daemon/Up.h"\n', "platform stands below daemon"),
    ("daemon/Up.h", '#  include   "menubar/Good.h"\n', "daemon stands below menubar"),
    ("notify/Up.h", '#include <daemon/Up.h>\n', "notify stands below daemon"),
    ("track/Up.h", '#include "setup/Good.h"\n', "track stands below setup"),
    ("install/Up.h", '#include "../filter/Good.h"\n', "leads out of the core"),
    ("filter/Up.h", '#include "setup/NotThere.h"\n', "filter stands below setup"),
    ("web/Host.cpp", '#include "hosts/gtk/WebViewGtk.h"\n', "leads out of the core"),
    ("web/Host2.cpp", '#include "WebViewGtk.h"\n', "not in the core"),
    ("web/Gtk.cpp", "#include <gtkmm/window.h>\n", "belongs to one system"),
    ("web/GLib.cpp", "#include <glib.h>\n", "belongs to one system"),
    ("app/Kit.cpp", "#import <AppKit/AppKit.h>\n", "belongs to one system"),
    ("app/Os.cpp", "#include <os/log.h>\n", "belongs to one system"),
    ("daemon/Apple.cpp", "#ifdef __APPLE__\n#endif\n", "__APPLE__"),
    ("daemon/Linux.cpp", "#if 1 && \\\n    defined(__linux__)\n#endif\n", "__linux__"),
    ("daemon/Windows.cpp", "# if defined _WIN32\n# endif\n", "_WIN32"),
    ("daemon/Target.cpp", "#if 0\n#elif TARGET_OS_OSX\n#endif\n", "TARGET_OS_OSX"),
    ("daemon/Asks.cpp", "#if __has_include(<AppKit/AppKit.h>)\n#endif\n", "header of one system"),
    ("daemon/Native.mm", "int x;\n", "no portable source"),
    ("gtk/Window.cpp", "int x;\n", "belongs to no module"),
    ("Loose.cpp", "int x;\n", "belongs to no module"),
]


def self_test():
    failures = []
    with tempfile.TemporaryDirectory() as directory:
        source = pathlib.Path(directory).resolve() / "src"
        for name, text, _ in PLANTED:
            path = source / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        found = violations(source)
        for name, _, expected in PLANTED:
            own = [line for line in found if line.startswith(f"{source / name}:")]
            if expected is None and own:
                failures.append(f"{name}: nothing is wrong there, but: {own}")
            if expected is not None and (len(own) != 1 or expected not in own[0]):
                failures.append(f"{name}: expected one line with \"{expected}\", got {own}")
    with tempfile.TemporaryDirectory() as directory:
        if not violations(pathlib.Path(directory)):
            failures.append("a tree without sources passes")
    return failures


def main(arguments):
    if arguments == ["--self-test"]:
        lines = self_test()
    elif len(arguments) == 1 and not arguments[0].startswith("-"):
        lines = violations(pathlib.Path(arguments[0]))
    else:
        print(__doc__, file=sys.stderr)
        return 2
    for line in lines:
        print(line)
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
