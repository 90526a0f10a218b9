#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""What of core/, interfaces/ and src/ the tests have run, from builds that count it.

report.py lines <build folder>   of GCC's --coverage: lines and branches; also as coverage.json, for gcovr
report.py mcdc <build folder>    of Clang 19's -fcoverage-mcdc: conditions that have decided alone
Both fail unless all have been seen, but for what exclusions.txt lists.  What is compiled more than once, such as
a kernel, a template or an inline function, counts as run where one of its compilations has been: gcovr 5.2 takes
every one for branches of their own.  (GCC's build makes always_inline functions out of line, for the same reason.)
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

    def __init__(self, kinds):
        self.left = set()
        for block in (HERE / "exclusions.txt").read_text().split("\n\n"):
            rows = [row.strip() for row in block.splitlines() if row and not row.startswith("#")]
            if rows and rows[0].split()[1] in kinds:
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


def report_lines(build):
    lines, branches = count(build)
    exclusions = Exclusions({"line", "branch"})
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


def conditions(file, profile):
    """The decisions in a module or program: their places, and for each condition whether it has decided alone."""
    command = ["llvm-cov-19", "export", f"-instr-profile={profile}", file]
    out = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    for function in json.loads(out)["data"][0]["functions"]:
        path = relative(function["filenames"][0])
        for record in function.get("mcdc_records", []) if path else []:
            yield (path, *record[:4]), record[-1]


def report_mcdc(build):
    profile = build / "merged.profdata"
    subprocess.run(["llvm-profdata-19", "merge", "-o", profile, *build.glob("profiles/*.profraw")], check=True)
    # The decision of TN_ASSERT comes out once for each file that asserts; tests/assertions/ looks at every one.
    found = {}
    for file in [*build.glob("**/libTARN*.so.1"), *build.glob("tests/*_test"), *build.glob("tests/*/*_test")]:
        for place, decided_alone in conditions(file, profile):
            seen = found.get(place, [False] * len(decided_alone))
            found[place] = [a or b for a, b in zip(seen, decided_alone)]
    exclusions = Exclusions({"mcdc"})
    for (path, number, *_), seen in sorted(found.items()):
        if not all(seen):
            exclusions.cover(path, number, f"mcdc {seen.count(False)}")
    n = sum(len(seen) for seen in found.values())
    print(f"conditions: {sum(map(sum, found.values()))} out of {n} decide alone, in {len(found)} decisions")
    return n > 0 and exclusions.verdict()


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in ("lines", "mcdc"):
        sys.exit(__doc__)
    report = report_lines if sys.argv[1] == "lines" else report_mcdc
    sys.exit(not report(pathlib.Path(sys.argv[2]).resolve()))


main()
