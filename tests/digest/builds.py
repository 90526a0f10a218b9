#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Builds the library by every compiler at hand, at every level and for several processors, and compares.

    builds.py [--all] [PART ...]    the builds whose names hold one of the parts, e.g. gcc-12 or s390x

Each build runs tests/digest with each of its kernel sets, processors other than this one under emulation, and
the table has a line for each: "ok" where a family's digests are those of expected.txt, "DIFF" where not.
The exit status is 1 if one differs, or cannot be built."""

import os
import shutil
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
COMPILERS = {"gcc-12": "g++-12", "clang-14": "clang++-14", "clang-19": "clang++-19"}
LEVELS = ["-O0", "-O1", "-O2", "-O3", "-Os"]
FUSING = "-O3 -march=x86-64-v3"  # a processor that can fuse a product and a sum
TARGETS = {"i686": ["qemu-i386", "-cpu", "max"], "aarch64": ["qemu-aarch64"], "s390x": ["qemu-s390x"],
           "riscv64": ["qemu-riscv64"]}


class Build:
    # old: run by a processor without AVX2, too, on which the module has to choose its other kernels
    def __init__(self, compiler, flags, lto=False, target=None, percent=100, old=False):
        self.compiler, self.flags, self.lto, self.target, self.percent = compiler, flags, lto, target, percent
        self.old = old
        self.name = " ".join([target or "x86_64", compiler, flags] + ["lto"] * lto)
        self.dir = ROOT / "build" / "digest" / self.name.replace(" ", "_")

    def configuration(self):
        compiler = COMPILERS[self.compiler]
        options = {"CMAKE_BUILD_TYPE": "None", "CMAKE_CXX_FLAGS": self.flags, "TARNTNLA_BUILD_TESTS": "ON",
                   "TARN_DIGEST_ALONE": "ON", "CMAKE_INTERPROCEDURAL_OPTIMIZATION": "ON" if self.lto else "OFF"}
        if self.target:
            triplet = f"{self.target}-linux-gnu"
            options |= {"CMAKE_SYSTEM_NAME": "Linux", "CMAKE_SYSTEM_PROCESSOR": self.target}
            if self.compiler.startswith("gcc"):
                compiler = f"{triplet}-{compiler}"
            else:
                options["CMAKE_CXX_COMPILER_TARGET"] = triplet
        options["CMAKE_CXX_COMPILER"] = compiler
        return [f"-D{name}={value}" for name, value in options.items()]

    def run(self):
        """The lines of the table, and what went wrong, as text."""
        shutil.rmtree(self.dir, ignore_errors=True)
        log = []
        for command in (["cmake", "-G", "Ninja", "-S", ROOT, "-B", self.dir] + self.configuration(),
                        ["cmake", "--build", self.dir, "-j1"]):
            done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            if done.returncode != 0:
                return [(self.name, None)], done.stdout[-4000:]
        lines = []
        emulator = TARGETS[self.target] + ["-L", f"/usr/{self.target}-linux-gnu"] if self.target else []
        runs = [("best set", self.dir, emulator)]
        if self.target in (None, "i686"):  # elsewhere it is the portable one
            runs.append(("portable", self.dir / "tests" / "portable", emulator))
        if self.old:
            runs.append(("no AVX2 there", self.dir, ["qemu-x86_64", "-cpu", "qemu64"]))
        for module, path, emulator in runs:
            done = subprocess.run(
                emulator + [self.dir / "tests/digest/digest", "--percent", str(self.percent),
                            "--expected", HERE / "expected.txt"],
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                env=os.environ | {"LD_LIBRARY_PATH": str(path)})
            lines.append((f"{self.name}, {module}", done.stdout))
            if done.returncode != 0:
                log.append(f"{self.name}, {module}: ended with {done.returncode}\n{done.stdout[-4000:]}")
        if not log:
            shutil.rmtree(self.dir)
        return lines, "".join(log)


def short_list():
    return [Build("gcc-12", "-O0", percent=10), Build("gcc-12", "-O2", lto=True), Build("gcc-12", "-Os", percent=10, old=True),
            Build("gcc-12", FUSING, percent=10), Build("clang-14", "-O1", percent=10),
            Build("clang-14", "-O3", lto=True, percent=10), Build("clang-19", "-O0", percent=10),
            Build("clang-19", "-O2"), Build("clang-19", FUSING, percent=10),
            Build("gcc-12", "-O0", target="i686", percent=10),
            Build("gcc-12", "-O3", target="aarch64", percent=10),
            Build("gcc-12", "-O2", target="s390x", percent=10),
            Build("clang-19", "-O3", target="riscv64", percent=10)]


def whole_list():
    builds = [Build(compiler, level, lto) for compiler in COMPILERS for level in LEVELS for lto in (False, True)]
    builds += [Build(compiler, FUSING) for compiler in COMPILERS]
    builds += [Build(compiler, "-O2 -g", percent=10, old=True) for compiler in COMPILERS]
    for target in TARGETS:
        builds += [Build("gcc-12", level, target=target, percent=100 if level == "-O2" else 10) for level in LEVELS]
        builds += [Build("gcc-12", "-O3", lto=True, target=target, percent=10),
                   Build("clang-14", "-O2", target=target, percent=10),
                   Build("clang-19", "-O0", target=target, percent=10),
                   Build("clang-19", "-O3", target=target, percent=10)]
    return builds


def main(arguments):
    parts = [a for a in arguments if a != "--all"]
    builds = [b for b in (whole_list() if "--all" in arguments else short_list())
              if not parts or any(part in b.name for part in parts)]
    families = [line.split()[0] for line in (HERE / "expected.txt").read_text().splitlines()]
    print(f"{'build, kernel set':46}", *[f"{family[:7]:7}" for family in families])
    n_bad = 0
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for lines, log in pool.map(Build.run, builds):
            bad = bool(log)
            for name, output in lines:
                verdicts = {}
                for words in map(str.split, (output or "").splitlines()):
                    verdicts[words[0]] = "ok" if words[-1] == "expected" else "DIFF"
                cells = [verdicts.get(family, "-") for family in families]
                bad = bad or cells.count("ok") < len(families)
                print(f"{name:46}", *[f"{cell:7}" for cell in cells], flush=True)
            n_bad += bad
            if log:
                print(log, flush=True)
    print(f"{len(builds)} builds of {len(families)} families: " +
          (f"{n_bad} that differ or fail" if n_bad else "the same digests everywhere"))
    return 1 if n_bad or not builds else 0


sys.exit(main(sys.argv[1:]))
