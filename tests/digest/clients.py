#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Builds the digest as a client may, with flags that the library itself never has, and runs it with one library.

    clients.py PREFIX [--all] [PART ...]    PREFIX: where the library is installed

The digests are those of expected.txt whatever a client is compiled with: all arithmetic is in the module.
The exit status is 1 if one differs, or cannot be built."""

import os
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

HERE = Path(__file__).resolve().parent
COMPILERS = ["g++-12", "clang++-14"]
STANDARDS = ["c++17", "c++20", "c++2b"]
FLAGS = ["-O3 -march=native -ffast-math", "-O0 -D_GLIBCXX_DEBUG", "-O2 -fno-rtti -funsigned-char", "-Os -fno-plt"]


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)


def verdict(prefix, compiler, standard, flags):
    lib = prefix / "lib"
    with tempfile.TemporaryDirectory() as directory:
        program = Path(directory) / "digest"
        built = run([compiler, f"-std={standard}", *flags.split(), f"-I{prefix}/include/tarntnla", f"-I{HERE.parent}",
                     *sorted(HERE.glob("*.cpp")), f"-L{lib}", "-lTARNtnla", "-lTARNtn", "-pthread", "-o", program])
        if built.returncode != 0:
            return "cannot be built\n" + built.stdout[-4000:]
        done = run([program, "--expected", HERE / "expected.txt"],
                   env=os.environ | {"LD_LIBRARY_PATH": str(lib)})
        return "ok" if done.returncode == 0 else f"DIFFERS, or ends with {done.returncode}\n" + done.stdout


def main(arguments):
    prefix = Path(arguments[0]).resolve()
    parts = [a for a in arguments[1:] if a != "--all"]
    clients = [(compiler, standard, flags) for flags in FLAGS for compiler in COMPILERS for standard in STANDARDS]
    if "--all" not in arguments:
        clients = [c for c in clients if c[1] == "c++17" and c[2] in FLAGS[:2]]
    clients = [c for c in clients if not parts or any(part in " ".join(c) for part in parts)]
    n_bad = 0
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for client, answer in zip(clients, pool.map(lambda c: verdict(prefix, *c), clients)):
            n_bad += answer != "ok"
            print(f"{' '.join(client):60} {answer}", flush=True)
    print(f"{len(clients)} clients of one library: " +
          (f"{n_bad} with differences" if n_bad else "the same digests in all"))
    return 1 if n_bad else 0


sys.exit(main(sys.argv[1:]))
