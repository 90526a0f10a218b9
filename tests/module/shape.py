#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

# What the two modules show, what they ask for, and how they are linked, as they are installed:
#   exports  equal to <module>.exports, symbol for symbol, each of the version <module>_1; a second word in a line
#            names the only compiler that has it
#   imports  those of the other module, and what <module>.imports lists: nothing that reads a file, the
#            environment or the network
#   linking  everything bound and then read-only, no path for the loader, no stack or page to write and execute
# usage: shape.py <folder of the modules> <GNU or Clang>; --write in its place writes the lists of exports anew
import pathlib, re, subprocess, sys

HERE = pathlib.Path(__file__).parent
MODULES = ("TARNtn", "TARNtnla")
LIBRARIES = {"libTARNtn.so.1", "libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6"}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def versioned(module, which):
    """Pairs of a symbol and its version, e.g. @@TARNtn_1; nm lists the versions themselves, too, as absolute."""
    lines = (line.split() for line in output("nm", "-D", "--format=posix", which, module).splitlines())
    return [re.fullmatch("([^@]*)(.*)", name).groups() for name, kind, *_ in lines if kind != "A"]


def symbols(module, which):
    return {name for name, _ in versioned(module, which)}


def readable(names):
    return output("c++filt", *names).splitlines()


def expected_exports(name, compiler):
    lines = (line.split() for line in (HERE / f"{name}.exports").read_text().splitlines())
    return {symbol for symbol, *only in lines if only in ([], [compiler])}


def write_exports(name, module):
    old = dict((line.split() + [""])[:2] for line in (HERE / f"{name}.exports").read_text().splitlines())
    lines = sorted(f"{symbol} {old.get(symbol, '')}".strip() for symbol in symbols(module, "--defined-only"))
    (HERE / f"{name}.exports").write_text("\n".join(lines) + "\n")


def faults(name, module, compiler, others):
    exported, expected = symbols(module, "--defined-only"), expected_exports(name, compiler)
    for text, names in ("shows", exported - expected), ("does not show", expected - exported):
        yield from (f"{text} {symbol}" for symbol in sorted(readable(names)) if names)
    yield from (f"shows {symbol} as version {version or 'none'}" for symbol, version
                in versioned(module, "--defined-only") if version != f"@@{name}_1")
    allowed = set((HERE / f"{name}.imports").read_text().split())
    foreign = symbols(module, "--undefined-only") - allowed - others
    yield from (f"asks for {symbol}" for symbol in sorted(readable(foreign)) if foreign)

    dynamic = re.findall(r"\((\w+)\)\s+(.*)", output("readelf", "-Wd", module))
    entries = dict(dynamic)
    needed = {value.split("[")[1].rstrip("]") for tag, value in dynamic if tag == "NEEDED"}
    yield from (f"needs {library}" for library in needed - LIBRARIES)
    if entries.get("SONAME") != f"Library soname: [lib{name}.so.1]":
        yield f"is called {entries.get('SONAME')}"
    if "BIND_NOW" not in entries.get("FLAGS", "") or "NOW" not in entries.get("FLAGS_1", ""):
        yield "binds symbols as late as they are called"
    yield from (f"has {tag}" for tag in ("RPATH", "RUNPATH", "TEXTREL") if tag in entries)
    if "TEXTREL" in entries.get("FLAGS", ""):
        yield "has relocations in its text"
    segments = re.findall(r"^  (\w+) +0x.* (R?[ W]?[ E]?) +0x[0-9a-f]+$", output("readelf", "-Wl", module), re.M)
    kinds = [kind for kind, _ in segments]
    yield from (f"has no segment {kind}" for kind in ("LOAD", "GNU_RELRO", "GNU_STACK") if kind not in kinds)
    yield from (f"has a segment {kind} to write and execute" for kind, access in segments
                if "W" in access and "E" in access)


def main(folder, compiler):
    modules = {name: pathlib.Path(folder) / f"lib{name}.so.1" for name in MODULES}
    if compiler == "--write":
        for name, module in modules.items():
            write_exports(name, module)
        return 0
    shown = symbols(modules["TARNtn"], "--defined-only")
    found = [f"{name} {fault}" for name, module in modules.items()
             for fault in faults(name, module, compiler, shown if name != "TARNtn" else set())]
    print("\n".join(found) or "the modules are as they should be")
    return 1 if found else 0


sys.exit(main(*sys.argv[1:]))
