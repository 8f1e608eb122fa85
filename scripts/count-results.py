#!/usr/bin/env python3
"""Adds up ctest's own reports: count-results.py BROKEN REPORT...

Prints "N passed, N failed", with ", N skipped" where tests could not be run on this machine. BROKEN is the number of steps that failed outside of any report; each counts as a failure,
and so do a report that cannot be read or names no test, and having no report at all.
"""

import sys
import xml.etree.ElementTree as ElementTree

passed = 0
skipped = 0
failed = int(sys.argv[1]) or (0 if sys.argv[2:] else 1)
for path in sys.argv[2:]:
    try:
        cases = list(ElementTree.parse(path).getroot().iter("testcase"))
    except (OSError, ElementTree.ParseError):
        cases = []
    # A run without a test proves nothing.
    if not cases:
        failed += 1
    for case in cases:
        if case.get("status") == "run" and case.find("failure") is None:
            passed += 1
        elif case.get("status") == "fail" or case.find("failure") is not None:
            failed += 1
        else:
            skipped += 1
print(f"{passed} passed, {failed} failed" + (f", {skipped} skipped" if skipped else ""))
sys.exit(1 if failed else 0)
