#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Lists every assertion of the library from its sources: file, line, function, condition and reported path.

table.py header   prints the list as the C++ header that assertions_test.cpp compiles in
table.py page     prints docs/assertions.md: the list, told to a user in the words of prose.txt
table.py check    fails if prose.txt does not speak of exactly these, or a page is out of date
A site's key is <file>:<function>:<n>: check n of the functions of that name in the file.
"""
import collections
import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
PAGE = "docs/assertions.md"
FIELDS = ("means", "cause", "instead")

Site = collections.namedtuple("Site", "file line function condition path key")

ASSERTION = re.compile(r"\bTN_ASSERT\(([^,]+), (.*)\);")
PATH_CONSTANT = re.compile(r'constexpr char (\w+)\[\] = "((?:core|interfaces|src)/[^"]+)";')
NOT_A_BLOCK = re.compile(r"\s*(#|//|(template|public|private|protected)\b|$)")
NOT_A_FUNCTION = re.compile(r"\s*(}|(if|for|while|else|do|switch|namespace)\b)")


def sources():
    files = [f for d in ("core", "interfaces", "src") for f in (ROOT / d).rglob("*") if f.suffix in (".h", ".cpp")]
    return {str(f.relative_to(ROOT)): f.read_text().splitlines() for f in sorted(files)}


def function_of(lines, number):
    """The qualified name of the function around a line: the heads of the blocks around it are less indented."""
    name, owner = None, ""
    indent = len(lines[number]) - len(lines[number].lstrip())
    for line in reversed(lines[:number]):
        here = len(line) - len(line.lstrip())
        if here >= indent or NOT_A_BLOCK.match(line):
            continue
        indent = here
        if NOT_A_FUNCTION.match(line):
            continue
        of_class = re.match(r"\s*(?:class|struct) (?:[A-Z_]+ )?(\w+) {$", line)
        head = re.search(r"([\w:~]+|[\w:]*operator\S+)\(", re.sub(r"<[^<>]*>", "", line))
        if of_class:
            owner = of_class.group(1) + "::" + owner
        elif head and name is None:
            name = head.group(1) + ("()" if head.group(1).endswith("operator") else "")
    return owner + name


def callers_of(function, files):
    """Where a function that reports a path of its caller is called: the caller, and the path it states."""
    for file, lines in files.items():
        constants = dict(PATH_CONSTANT.findall("\n".join(lines)))
        for number, line in enumerate(lines):
            call = re.search(r"\s" + function + r"\((.*)\);", line)
            stated = [constants[a] for a in call.group(1).split(", ") if a in constants] if call else []
            if stated:
                yield file, function_of(lines, number), stated[0]


def sites():
    files = sources()
    found = []
    count = collections.Counter()
    for file, lines in files.items():
        constants = dict(PATH_CONSTANT.findall("\n".join(lines)))
        for number, line in enumerate(lines):
            if "TN_ASSERT" not in line or line.startswith("#define"):
                continue
            match = ASSERTION.search(line)
            if not match:
                sys.exit(f"{file}:{number + 1}: an assertion stands on one line: TN_ASSERT(path, condition);")
            path, condition = match.groups()
            function = function_of(lines, number)
            if path.startswith('"'):
                stated = [(file, function, path.strip('"'))]
            elif path in constants:
                stated = [(file, function, constants[path])]
            else:
                stated = list(callers_of(function, files))
            if not stated:
                sys.exit(f"{file}:{number + 1}: no path is stated for this assertion")
            for by, who, what in stated:
                count[by, who] += 1
                found.append(Site(file, number + 1, who, condition, what, f"{by}:{who}:{count[by, who]}"))
    return found


def prose():
    texts = {}
    for line in (HERE / "prose.txt").read_text().splitlines():
        if line.startswith("  "):
            field, text = line.split(None, 1)
            entry[field] = text
        elif line and not line.startswith("#"):
            if line in texts:
                sys.exit(f"prose.txt speaks twice of {line}")
            entry = texts[line] = {}
    return texts


def missing_prose(found, texts):
    keys = {site.key for site in found}
    errors = [f"prose.txt says nothing of {key}" for key in sorted(keys - texts.keys())]
    errors += [f"prose.txt speaks of {key}, which is not there" for key in sorted(texts.keys() - keys)]
    errors += [f"prose.txt needs {', '.join(FIELDS)} of {key}" for key, e in texts.items() if tuple(e) != FIELDS]
    return errors


def header(found):
    rows = "".join(f'    {{"{s.key}",\n     "{s.path}", {s.line}}},\n' for s in found)
    return ("// Made by table.py.\n#pragma once\n\n"
            "struct AssertionSite {\n  const char* key;\n  const char* path;\n  int line;\n};\n\n"
            f"constexpr AssertionSite kAssertionSites[] = {{\n{rows}}};\n")


INTRODUCTION = """# Assertions

<!-- Made by `./dev assertions` from the sources and tests/assertions/prose.txt; a test compares. -->

A call that breaks a precondition is reported to `kit_assertion_handler`, if the application has installed one,
with a path and a line.  This page lists all {count} checks of this version by that path and line: what is
required, what usually breaks it, and what the library does instead, with a handler or without one.  Nothing is
thrown, and nothing is printed.

```cpp
kit_assertion_handler = [](const char* file, int line) {{ std::fprintf(stderr, "%s:%d\\n", file, line); }};
```

The path names the source to which a check belongs.  Some checks stand in another file, for speed or because
several functions share them: then the line is one of that file, and the list says so.  A handler that stops in a
debugger shows the call that is to blame; a numerical outcome, such as a singular matrix, is never an assertion.
"""


def page(found, texts):
    out = [INTRODUCTION.format(count=len(found))]
    for path in sorted({site.path for site in found}):
        out.append(f"\n## `{path}`\n\n")
        for site in sorted((s for s in found if s.path == path), key=lambda s: (s.file != path, s)):
            where = f"line {site.line}" + ("" if site.file == path else f" of `{site.file}`")
            text = texts[site.key]
            out.append(f"- **{where}**, `{site.function}`: {text['means']}.\\\n"
                       f"  Usual cause: {text['cause']}.\\\n  Instead: {text['instead']}.\n")
    return "".join(out)


def mentioned_elsewhere(found):
    """What the other pages show of a handler's report, and is no check's path and line any more."""
    places = {f"{site.path}:{site.line}" for site in found}
    return [f"{file.name}: {place} is no assertion" for file in sorted((ROOT / "docs").glob("*.md"))
            for place in re.findall(r"\b(?:src|core|interfaces)/\w+\.(?:cpp|h):\d+", file.read_text())
            if place not in places]


def main():
    found = sites()
    command = sys.argv[1] if len(sys.argv) == 2 else ""
    if command == "header":
        print(header(found), end="")
    elif command in ("page", "check"):
        texts = prose()
        errors = missing_prose(found, texts)
        if command == "check" and not errors and (ROOT / PAGE).read_text() != page(found, texts):
            errors = [f"{PAGE} is out of date; run ./dev assertions"]
        errors += mentioned_elsewhere(found) if command == "check" else []
        if errors:
            sys.exit("\n".join(errors))
        print(page(found, texts) if command == "page" else f"{len(found)} assertions, all described", end="")
    else:
        sys.exit(__doc__)


main()
