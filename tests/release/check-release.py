#!/usr/bin/env python3
"""check-release.py PREFIX VERSION: the release that is installed below PREFIX is whole, and starts from there.

It says that it cannot run in such a place, which is also what shows that it heeds no development root.
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile

prefix, version = pathlib.Path(sys.argv[1]), sys.argv[2]
client = prefix / "Applications/Brevanta.app/Contents/MacOS/Brevanta"
with tempfile.TemporaryDirectory() as home:
    surroundings = os.environ | {"HOME": home, "BREVANTA_ROOT": str(prefix)}

    def answer(*arguments):
        done = subprocess.run([client, *arguments], env=surroundings, capture_output=True, text=True, timeout=60)
        return done.returncode, done.stdout

    assert answer("--version") == (0, f"Brevanta {version}\n"), answer("--version")
    status, text = answer("--diagnose", "--json")
    findings = {finding["key"]: finding for finding in json.loads(text)["findings"]}
    assert status == 1, text
    assert findings["application.version"]["text"] == version, text
    assert findings["application.location"]["verdict"] == "needsUser", text
    assert "lacks" not in findings["sounds"]["text"], text
    assert list(pathlib.Path(home).iterdir()) == [], "a diagnosis changes nothing"
for file in ("usr/share/applications/com.brevanta.KestreluneMac.desktop", "usr/share/man/man1/Brevanta.1"):
    assert (prefix / file).is_file(), file
