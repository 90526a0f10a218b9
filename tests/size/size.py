#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Measures what the installed library costs those who include and load it, and fails beyond the limits.

    size.py PREFIX    the folder of an install; the compiler is g++, or what CXX names

Times are the least of many, so that other work on the machine adds nothing; the header's is what it takes
beyond the standard headers that it includes, and its lines are those that are not of these."""

import os
import re
import resource
import subprocess
import sys
import tempfile
from pathlib import Path

CXX = os.environ.get("CXX", "g++")
COMPILES = 15
LOADS = 100


def compiled(source, *flags):
    """The output of the compiler for a source, and the processor time in ms."""
    def used():
        return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    start = used()
    done = subprocess.run([CXX, "-std=c++17", "-x", "c++", *flags, "-"], input=source, text=True, check=True,
                          stdout=subprocess.PIPE)
    return done.stdout, 1000 * (used() - start)


def header(folder):
    """How many lines tarntnla.h adds, without empty ones, and how many ms."""
    include = f"-I{folder}"
    lines, ours = 0, False
    for line in compiled("#include <tarntnla.h>\n", include, "-E")[0].splitlines():
        marker = re.match(r'# \d+ "(.*?)"', line)
        if marker:
            ours = marker[1].startswith(str(folder))
        elif ours and line.strip():
            lines += 1
    texts = (path.read_text() for path in folder.glob("*.h"))
    standard = sorted({name for text in texts for name in re.findall(r"^#include (<\w+>)$", text, re.MULTILINE)})
    theirs = "".join(f"#include {name}\n" for name in standard)
    with_ours = theirs + "#include <tarntnla.h>\n"
    times = [[compiled(text, include, "-fsyntax-only")[1] for text in (theirs, with_ours)] for _ in range(COMPILES)]
    least = [min(column) for column in zip(*times)]
    return lines, least[1] - least[0]


def stripped_size(module, scratch):
    subprocess.run(["strip", "-o", scratch / "stripped", module], check=True)
    return (scratch / "stripped").stat().st_size


def load_time(modules, scratch):
    program = scratch / "load"
    source = Path(__file__).with_name("load.cpp")
    subprocess.run([CXX, "-std=c++17", "-O1", source, "-o", program], check=True)
    def once():
        return float(subprocess.run([program, *modules], check=True, stdout=subprocess.PIPE, text=True).stdout)
    return min(once() for _ in range(LOADS)) / 1000


def main(prefix):
    libraries = [next(prefix.glob(f"lib*/**/libTARN{name}.so.1")) for name in ("tn", "tnla")]
    lines, time = header(prefix / "include" / "tarntnla")
    with tempfile.TemporaryDirectory() as folder:
        scratch = Path(folder)
        rows = [("tarntnla.h, lines beyond the standard headers", lines, 5000, "lines"),
                ("tarntnla.h, time beyond the standard headers", time, 100, "ms"),
                ("libTARNtnla.so, stripped", stripped_size(libraries[1], scratch), 500 * 1024, "bytes"),
                ("both modules, time to load them", load_time(libraries, scratch), 1, "ms")]
    for what, measured, limit, unit in rows:
        verdict = "ok" if measured < limit else "TOO MUCH"
        print(f"{what:46} {measured:10.7g} {unit:6} below {limit:7g}: {verdict}")
    return 0 if all(measured < limit for _, measured, limit, _ in rows) else 1


sys.exit(main(Path(sys.argv[1]).resolve()))
