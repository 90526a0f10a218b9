#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

# What gdb shows of a program with one object of each kind (objects.cpp), with the script that an install puts
# where gdb looks for it, and modules without debug information.
#   shown     every command of session.txt prints what the line below it says: "(gdb) ..." in any program,
#             "(gdb, all types) ..." in one that knows all types
#   page      the session of docs/debugging.md is a real one
#   every     every class that the headers show has a printer, or nothing that could be printed
#   declined  where gdb was not told to trust the folder it runs nothing, and says what to write
# usage: printers_test.py <program> <program that knows all types> <folder of the modules> <header> ...
import os, pathlib, re, subprocess, sys

WITHOUT_DATA = {"TnAllocator", "TnErr", "TnLa", "TnLaErr"}
MARK = "@@@"  # between what one command prints and what the next one does


def gdb(program, folder, trusted, commands):
    """What each command printed at stop(), and all that gdb wrote."""
    trust = ["-iex", f"add-auto-load-safe-path {folder}"] if trusted else []
    lines = ["break stop", "run", "up", *(line for command in commands for line in (f"echo {MARK}", command)),
             f"echo {MARK}"]
    run = subprocess.run(["gdb", "-nx", "-batch", "-iex", "set debuginfod enabled off", *trust,
                          *(word for line in lines for word in ("-ex", line)), program],
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=600,
                         env=dict(os.environ, LD_LIBRARY_PATH=folder, LC_ALL="C"))
    answers = run.stdout.split(MARK)[1:-1]
    if len(answers) != len(commands):
        sys.exit(f"gdb went no further than\n{run.stdout}")
    return answers, run.stdout


def session():
    """The commands, each with its kind and what it has to print."""
    lines = (pathlib.Path(__file__).parent / "session.txt").read_text().splitlines()
    for line, expected in zip(lines[::2], lines[1::2], strict=True):
        yield *re.fullmatch(r"\((gdb.*?)\) (.*)", line).groups(), expected


def shown(program, folder, *kinds):
    pairs = [(command, expected) for kind, command, expected in session() if kind in kinds]
    answers, _ = gdb(program, folder, True, [command for command, _ in pairs])
    for (command, expected), answer in zip(pairs, answers):
        answer = re.sub(r"^\$\d+ = ", "", answer.strip())
        answer = re.sub(r"@GLIBCXX_[\d.]+", "", re.sub(r"0x[0-9a-f]{8,}", "ADDRESS", answer))
        if answer != expected:
            yield f"{program}: {command}\n  shows    {answer}\n  and not  {expected}"


def page(program, folder):
    text = (pathlib.Path(__file__).parents[2] / "docs" / "debugging.md").read_text()
    steps = re.findall(r"^    \(gdb\) (.*)\n((?:    (?!\(gdb\)).*\n)*)", text, re.M)
    answers, _ = gdb(program, folder, True, [command for command, _ in steps])
    for (command, expected), answer in zip(steps, answers, strict=True):
        if answer.strip() != re.sub("^    ", "", expected, flags=re.M).strip():
            yield f"docs/debugging.md: {command}\n  shows    {answer}"
    if len(steps) < 4:
        yield "docs/debugging.md: where is its session?"


def every(program, folder, headers):
    (listed,), _ = gdb(program, folder, True, ["info pretty-printer"])
    names = set(re.findall(r"^    (Tn\w+)$", listed, re.M))
    classes = set()
    for header in headers:
        classes |= set(re.findall(r"^class (?:TN(?:LA)?_API )?(\w+)[^;]*\{$", pathlib.Path(header).read_text(), re.M))
    yield from (f"{name} has no printer" for name in sorted(classes - names - WITHOUT_DATA))
    yield from (f"{name} is no class" for name in sorted((names | WITHOUT_DATA) - classes))


def declined(program, folder):
    (answer,), everything = gdb(program, folder, False, ["print A"])
    if "3 x 2" in answer or f"\tadd-auto-load-safe-path {folder}" not in everything:
        yield f"without being told to trust {folder}:\n{everything}"


def main(program, all_types, folder, *headers):
    folder = os.path.realpath(folder)
    faults = [*shown(program, folder, "gdb"), *shown(all_types, folder, "gdb", "gdb, all types"),
              *page(program, folder), *every(program, folder, headers), *declined(program, folder)]
    print("\n".join(faults) or f"{len(list(session()))} commands show what they should")
    return 1 if faults else 0


sys.exit(main(*sys.argv[1:]))
