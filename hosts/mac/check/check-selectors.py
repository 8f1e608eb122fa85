#!/usr/bin/env python3
"""Compares the Objective-C selectors of the Mac host with the declarations; docs/mac-check.md tells why.

usage: check-selectors.py DECLARATIONS HOST MINIMUM

DECLARATIONS is the folder of declaration headers, HOST the folder of the host's .h and .mm files, MINIMUM the oldest
macOS that the host runs on. Prints one line per finding; the exit status is 1 when there is one. It reports
  - a method that a class implements and neither declares, nor inherits, nor finds in a protocol that it adopts: a
    misspelt delegate method, which the compiler takes for one more method and which nobody would call;
  - an action given by @selector() that nothing declares, or that only host classes declare and none implements;
  - a declaration that the host does not use, that names no documentation page, or that is newer than MINIMUM.
"""

import re
import sys
from pathlib import Path

IDENTIFIER = r"[A-Za-z_]\w*"


def without_comments(text):
    """The code with comments blanked, line by line, so that positions still give line numbers."""
    pattern = re.compile(r'"(?:\\.|[^"\\\n])*"|//[^\n]*|/\*.*?\*/', re.S)
    return pattern.sub(lambda m: m[0] if m[0][0] == '"' else re.sub(r"[^\n]", " ", m[0]), text)


def without_parentheses(text):
    previous = None
    while text != previous:
        previous, text = text, re.sub(r"\([^()]*\)", " ", text)
    return text


def selector_of(signature):
    """`(void)setA:(int)a b:(int)b NS_X` gives `setA:b:`."""
    signature = re.sub(r"__attribute__\s*\(\(.*?\)\)", " ", signature)
    signature = without_parentheses(signature)
    labels = re.findall(rf"({IDENTIFIER})\s*:", signature)
    if labels:
        return "".join(label + ":" for label in labels)
    first = re.search(IDENTIFIER, signature)
    return first[0] if first else ""


def property_selectors(declaration):
    """The getter and, unless it is readonly, the setter."""
    attributes = re.match(r"\s*\(([^)]*)\)", declaration)
    attributes = attributes[1] if attributes else ""
    name = re.findall(IDENTIFIER, re.sub(r"NS_[A-Z_]+|\bAPI_\w+|\([^)]*\)", " ", declaration))[-1]
    getter = re.search(rf"getter\s*=\s*({IDENTIFIER})", attributes)
    selectors = {name, getter[1] if getter else name}
    if "readonly" not in attributes:
        selectors.add(f"set{name[0].upper()}{name[1:]}:")
    return name, selectors


class Type:
    """A class or a protocol: what it declares and where else selectors come from."""

    def __init__(self):
        self.selectors = set()
        self.parents = set()  # Superclass and adopted protocols.


class Program:
    def __init__(self):
        self.classes = {}
        self.protocols = {}
        self.members = []  # (file, line, selector, names any of which counts as a use)
        self.implementations = []  # (file, class, [(line, selector)])

    def read(self, path):
        text = without_comments(path.read_text(encoding="utf-8"))
        blocks = re.compile(rf"^[^\n@]*@(interface|protocol|implementation)\s+({IDENTIFIER})(.*?)^@end", re.S | re.M)
        # Forward declarations (`@protocol Name;`) are no blocks.
        text = re.sub(rf"@(protocol|class)\s+[\w\s,]+;", lambda m: re.sub(r"[^\n]", " ", m[0]), text)
        for block in blocks.finditer(text):
            kind, name, body = block[1], block[2], block[3]
            line = text.count("\n", 0, block.start(3)) + 1
            if kind == "implementation":
                methods = [
                    (line + body.count("\n", 0, m.start(1)), selector_of(m[1]))
                    for m in re.finditer(r"^[-+]\s*([^{;]*?)\s*\{", body, re.M)
                ]
                self.implementations.append((path, name, methods))
            else:
                self.read_declarations(path, kind, name, body, line)

    def read_declarations(self, path, kind, name, body, line):
        table = self.classes if kind == "interface" else self.protocols
        entry = table.setdefault(name, Type())
        head, _, rest = body.partition("\n")
        head = re.sub(r"^<[^<>]*>(?=\s*:)", "", head.strip())  # Type parameters, as in NSArray<ObjectType> : NSObject.
        superclass = re.match(rf"\s*:\s*({IDENTIFIER})", head)
        if superclass:
            entry.parents.add(("class", superclass[1]))
        adopted = re.search(r"<([^<>]*)>\s*\{?\s*$", head)
        if adopted:
            entry.parents.update(("protocol", part.strip()) for part in adopted[1].split(","))
        for declaration in re.finditer(r"(?:^[-+]|@property)([^;]*);", rest, re.M | re.S):
            at = line + 1 + rest.count("\n", 0, declaration.start())
            if declaration[0].startswith("@property"):
                property_name, selectors = property_selectors(declaration[1])
                names = {property_name} | {selector.rstrip(":") for selector in selectors}
            else:
                selectors = {selector_of(declaration[1])}
                names = {next(iter(selectors)).split(":")[0]}
            entry.selectors |= selectors
            self.members.append((path, at, name, names))

    def known_to(self, kind, name, seen=None):
        """All selectors of a type, its ancestors and the protocols that they adopt."""
        seen = set() if seen is None else seen
        if (kind, name) in seen:
            return set()
        seen.add((kind, name))
        entry = (self.classes if kind == "class" else self.protocols).get(name)
        if entry is None:
            return set()
        result = set(entry.selectors)
        for parent in entry.parents:
            result |= self.known_to(*parent, seen)
        return result


def documentation_findings(path, minimum):
    """Each top-level declaration stands under a line that names its page and its first macOS."""
    lines = path.read_text(encoding="utf-8").splitlines()
    documented = False
    for number, line in enumerate(lines, 1):
        for version in re.findall(r"macOS (\d+(?:\.\d+)?)", line):
            if tuple(map(int, version.split("."))) > minimum:
                yield f"{path}:{number}: needs macOS {version}, which is newer than the host's minimum"
        if re.match(r"// Documentation: .+; macOS \d", line):
            documented = True
        elif line == "":
            documented = False
        elif re.match(r"(__attribute__\S+ )?@(interface|protocol)\b", line) and not documented:
            yield f"{path}:{number}: names no documentation page and first macOS"


def main():
    declarations, host = Path(sys.argv[1]), Path(sys.argv[2])
    minimum = tuple(map(int, sys.argv[3].split(".")))
    headers = sorted(declarations.rglob("*.h"))
    sources = sorted(path for path in host.iterdir() if path.suffix in (".h", ".mm"))
    if not headers or not sources:
        sys.exit(f"no headers in {declarations} or no sources in {host}")

    system, program = Program(), Program()
    for path in headers:
        system.read(path)
        program.read(path)
    for path in sources:
        program.read(path)
    findings = []

    implemented = set()
    for path, name, methods in program.implementations:
        known = program.known_to("class", name)
        implemented |= {selector for _, selector in methods}
        for line, selector in methods:
            if selector not in known:
                findings.append(
                    f"{path}:{line}: {name} implements {selector}, which neither it nor a protocol of it declares")

    of_system = set().union(*(t.selectors for t in [*system.classes.values(), *system.protocols.values()]))
    of_host_protocols = set().union(*(t.selectors for t in program.protocols.values()))
    code = {path: without_comments(path.read_text(encoding="utf-8")) for path in sources}
    for path, text in code.items():
        for use in re.finditer(r"@selector\(\s*([\w:]+)\s*\)", text):
            if use[1] not in of_system | of_host_protocols | implemented:
                line = text.count("\n", 0, use.start()) + 1
                findings.append(f"{path}:{line}: no class implements {use[1]}")

    words = set(re.findall(IDENTIFIER, "\n".join(code.values())))
    compiler_uses = {"alloc", "class", "init", "countByEnumeratingWithState"}
    for path, line, owner, names in system.members:
        if not names & (words | compiler_uses):
            findings.append(f"{path}:{line}: the host does not use {owner}'s {sorted(names)[0]}")
    for path in headers:
        findings.extend(documentation_findings(path, minimum))

    print("\n".join(findings), end="\n" if findings else "")
    sys.exit(1 if findings else 0)


main()
