#!/usr/bin/env python3
"""What lines and branches of core/, interfaces/ and src/ the tests have run.

report.py <build folder>    reads the counts of a build with GCC's --coverage, writes coverage.json for gcovr
Fails unless all have been run, but for what exclusions.txt lists.  What is compiled more than once, such as a
kernel, a template or an inline function, counts as run where one of its compilations has been: gcovr 5.2 takes
every one for branches of their own.  (The build makes always_inline functions out of line, for the same reason.)
"""
import collections
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent


def relative(path, base=ROOT):
    """The path from the root, if it is one of the library's sources."""
    path = os.path.relpath(os.path.join(base, path), ROOT)
    return path if path.split("/")[0] in ("core", "interfaces", "src") else None


class Exclusions:
    """Blocks of a file with what is missing, the text of the line, and the reason."""

    def __init__(self):
        self.left = set()
        for block in (HERE / "exclusions.txt").read_text().split("\n\n"):
            rows = [row.strip() for row in block.splitlines() if row and not row.startswith("#")]
            if rows:
                file, what = rows[0].split(" ", 1)
                self.left.add((file, what, rows[1]))
        self.used = set()
        self.missing = 0

    def cover(self, path, number, what):
        """Whether this is excluded; otherwise it is reported."""
        key = path, what, (ROOT / path).read_text().splitlines()[number - 1].strip()
        if key in self.left:
            self.used.add(key)
            return True
        self.missing += 1
        print(f"{path}:{number}: not seen: {what}: {key[2]}")
        return False

    def verdict(self):
        for path, what, text in sorted(self.left - self.used):
            print(f"exclusions.txt: is seen, or not there: {path} {what}: {text}")
        return not self.missing and self.left == self.used


def gcov(data):
    command = ["gcov", "--branch-probabilities", "--json-format", "--stdout", data.name]
    out = subprocess.run(command, cwd=data.parent, capture_output=True, text=True, check=True).stdout
    return [f for report in out.splitlines() for f in json.loads(report)["files"]]


def decided(branches):
    """The counts of what the source decides: not whether a call returns or throws, two branches in turn."""
    behind = [b["throw"] for b in branches[1:]] + [False]
    return [b["count"] for b, throws in zip(branches, behind) if not b["throw"] and not throws]


def count(build):
    """file -> line -> count; and file -> (line, function, number of branches) -> the count of each branch."""
    lines = collections.defaultdict(collections.Counter)
    branches = collections.defaultdict(dict)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for report in pool.map(gcov, sorted(build.rglob("*.gcda"))):
            for file in report:
                path = relative(file["file"], build)
                if path is None:
                    continue
                starts = {f["name"]: (f["start_line"], f["start_column"]) for f in file["functions"]}
                for line in file["lines"]:
                    lines[path][line["line_number"]] += line["count"]
                    counts = decided(line["branches"])
                    if len(counts) > 1:
                        key = line["line_number"], starts.get(line.get("function_name")), len(counts)
                        old = branches[path].get(key, [0] * len(counts))
                        branches[path][key] = [a + b for a, b in zip(old, counts)]
    return lines, branches


def report(build):
    lines, branches = count(build)
    exclusions = Exclusions()
    files = []
    for path in sorted(lines):
        text = (ROOT / path).read_text().splitlines()
        of_line = collections.defaultdict(list)
        for (number, _, _), counts in sorted(branches[path].items(), key=str):
            of_line[number] += counts
        rows = []
        for number, times in sorted(lines[path].items()):
            if times == 0 and (text[number - 1].strip() == "}" or exclusions.cover(path, number, "line")):
                continue  # a closing brace alone is the way out of an exception
            counts = of_line[number]
            missing = counts.count(0)
            if missing and exclusions.cover(path, number, f"branch {missing}"):
                counts = [c for c in counts if c > 0]
            rows.append({"line_number": number, "count": times, "gcovr/noncode": False, "gcovr/excluded": False,
                         "branches": [{"count": c, "fallthrough": False, "throw": False} for c in counts]})
        files.append({"file": path, "lines": rows, "functions": []})
    (build / "coverage.json").write_text(json.dumps({"gcovr/format_version": "0.3", "files": files}))
    return exclusions.verdict()


if len(sys.argv) != 2:
    sys.exit(__doc__)
sys.exit(not report(pathlib.Path(sys.argv[1]).resolve()))
