# SPDX-License-Identifier: MIT

"""Runs the benchmarks, prints their tables, and writes those of docs/performance.md.

    report.py BUILD [--quick | --check | --report] [PROBLEM ...]

Without an option: the full run; if it is one of all problems it also writes the document and its plots.
--quick: fewer and shorter ones, nothing is written.  --check: the answers of the quick ones
alone, nothing is timed.
--report: no run; the document from the latest full run of every problem, on the machine that made it.
"""

import subprocess
import sys
import time
from pathlib import Path

import document
from results import PROBLEMS, Results

# A repetition lasts at least min_time seconds.  The peers' repetitions come in random order, so that a slow
# phase of the machine meets all of them.
FULL = ["--benchmark_repetitions=9", "--benchmark_min_time=0.03"]
QUICK = ["--quick", "--benchmark_repetitions=3", "--benchmark_min_time=0.004"]


def run(program, options, output):
    output.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run([program, *options, "--benchmark_enable_random_interleaving=true",
                    f"--benchmark_out={output}", "--benchmark_out_format=json"],
                   stdout=subprocess.DEVNULL, check=True)


def run_all(build, problems, options, directory):
    begin = time.monotonic()
    for number, problem in enumerate(problems, 1):
        print(f"[{number}/{len(problems)}, {time.monotonic() - begin:.0f} s] {problem}", flush=True)
        run(build / "bench" / f"{problem}_bench", options, directory / f"{problem}.json")
        if sys.stderr.isatty():
            print("\r", end="")
        print(document.as_text(document.ratio_table(Results(directory, [problem]), problem)), flush=True)
    print(f"{time.monotonic() - begin:.0f} s")


def check_all(build, problems):
    for problem in problems:
        print(f"{problem}: ", end="", flush=True)
        subprocess.run([build / "bench" / f"{problem}_bench", "--check"], check=True)


def main(arguments):
    build = Path(arguments[0])
    options = {a for a in arguments[1:] if a.startswith("-")}
    problems = [a for a in arguments[1:] if a not in options]
    if options - {"--quick", "--check", "--report"} or len(options) > 1 or set(problems) - set(PROBLEMS):
        sys.exit(f"usage: ./dev bench [--quick | --check | --report] [PROBLEM ...]\n"
                 f"a PROBLEM is one of {', '.join(PROBLEMS)}")
    full, quick = build / "results", build / "results" / "quick"
    chosen = problems or PROBLEMS
    if "--check" in options:
        check_all(build, chosen)
        return
    is_quick = "--quick" in options
    directory = quick if is_quick else full
    if "--report" not in options:
        run_all(build, chosen, QUICK if is_quick else FULL, directory)
    results = Results(directory, chosen)
    print(document.as_text(document.goal_table(results)))
    if not is_quick and not problems:
        document.write(results, build)


if __name__ == "__main__":
    main(sys.argv[1:])
