#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

# Every function that a module shows is called by an operation on which the allocation tests let allocations
# fail: callgrind notes what runs inside run_under_trial (tests/support/trial.h).  So a new public function
# without such an operation is noticed.  What need not be called stands in tried.exempt, a pattern and its
# reason a line; a pattern that exempts nothing is a fault, too.
# usage: tried.py <program tried> <folder of the modules>
import os, pathlib, re, subprocess, sys, tempfile

HERE = pathlib.Path(__file__).parent


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def called(program):
    with tempfile.NamedTemporaryFile() as profile:
        subprocess.run(["valgrind", "-q", "--tool=callgrind", "--demangle=no",
                        "--toggle-collect=*run_under_trial*", f"--callgrind-out-file={profile.name}", program],
                       check=True, stdout=subprocess.DEVNULL, env=os.environ | {"NOTHING_IS_TO_FAIL": "1"})
        return set(re.findall(r"^c?fn=\(\d+\) (\S+)$", pathlib.Path(profile.name).read_text(), re.M))


def shown_functions(module):
    functions = {}  # address: its names
    for line in output("nm", "-D", "--defined-only", "--without-symbol-versions", module).splitlines():
        address, kind, name = line.split()
        if kind in "TW":
            functions.setdefault(address, []).append(name)
    return functions.values()


def main(program, folder):
    in_trials = called(program)
    exempt = [line.split("  ", 1)[0] for line in (HERE / "tried.exempt").read_text().splitlines()]
    used, missing, n_tried = set(), [], 0
    for module in "libTARNtn.so.1", "libTARNtnla.so.1":
        for names in shown_functions(pathlib.Path(folder) / module):
            if in_trials.intersection(names):
                n_tried += 1
                continue
            name = output("c++filt", names[0]).strip()
            fits = [pattern for pattern in exempt if re.fullmatch(pattern, name)]
            used.update(fits)
            if not fits:
                missing.append(f"no allocation fails in {name}")
    missing += [f"exempts nothing: {pattern}" for pattern in exempt if pattern not in used]
    print("\n".join(missing) or f"allocations fail in all of {n_tried} functions")
    return 1 if missing else 0


sys.exit(main(*sys.argv[1:]))
