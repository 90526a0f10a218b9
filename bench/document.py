# SPDX-License-Identifier: MIT

"""The tables and plots of docs/performance.md, from the results."""

import re
import shutil
import subprocess
from pathlib import Path

import plots
from results import PEERS, PROBLEMS, read_goals

ROOT = Path(__file__).resolve().parent.parent
DOCUMENT = ROOT / "docs" / "performance.md"


# --- Numbers and tables: a table is a list of rows of text, the first one is the head --------------------

def duration(ns):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if ns >= 0.9995 * size:
            return f"{ns / size:.3g} {unit}"
    return f"{ns:.3g} ns"


def quotient(x):
    if x is None:
        return ""
    return f"{x:.2f}" if x < 9.95 else f"{x:.0f}" if x < 99.5 else f"{x:.2g}".replace("e+0", "e")


def memory(n_bytes):
    for unit, size in (("GiB", 2 ** 30), ("MiB", 2 ** 20)):
        if n_bytes >= size:
            return f"{n_bytes / size:.3g} {unit}"
    return f"{n_bytes / 1024:.{0 if n_bytes >= 100 * 1024 else 1}f} KiB"


def count(n):
    for unit, size in (("million", 1_000_000), ("thousand", 1000)):
        if n >= size:
            return f"{n / size:.4g} {unit}"
    return str(n)


def as_text(table):
    widths = [max(len(row[i]) for row in table) for i in range(len(table[0]))]
    lines = ("  ".join(cell.ljust(width) for cell, width in zip(row, widths)) for row in table)
    return "".join(f"  {line.rstrip()}\n" for line in lines)


def as_markdown(table):
    lines = ["| " + " | ".join(row) + " |" for row in table]
    return "\n".join([lines[0], "|" + "---|" * len(table[0]), *lines[1:]]) + "\n"


# --- What is shown ----------------------------------------------------------------------------------------

def ratio_table(results, problem):
    peers = results.peers(problem)
    table = [["operation / size", "ours"] + [PEERS[peer] for peer in peers]]
    for row in results.of_problem(problem):
        ours = results.time(row)
        table.append([row.split("/", 1)[1], duration(ours) if ours else ""]
                     + [quotient(results.ratio(row, peer)) for peer in peers])
    return table


def goal_table(results):
    table = [["row", "goal", "reached", "", "remark"]]
    for goal in read_goals():
        reached = goal.reached(results)
        if reached is None:
            continue
        if goal.most_time:
            wanted, got = f"at most {duration(goal.most_time)}", duration(reached)
        else:
            name = {"best": "the best"}.get(goal.peer) or PEERS.get(goal.peer) or goal.peer
            wanted, got = f"{goal.least_ratio:g} x {name}", quotient(reached)
        met = goal.is_met(results)
        table.append([goal.row + (" *" if goal.is_floor else ""), wanted, got, "" if met else "missed",
                      "" if met else goal.remark])
    return table


def memory_table(results):
    table = [["unknowns", "equations", "chain", "peak memory", "time an equation",
              "the equations written out in full"]]
    for row in results.of_problem("block_band"):
        found = re.fullmatch(r"block_band/(open|closed)_(\d+)/(\d+)x(\d+)", row)
        if not found:
            continue
        per_block, bandwidth, unknowns = (int(found[i]) for i in (2, 3, 4))
        equations = (unknowns - bandwidth + 1) * per_block
        table.append([str(unknowns), count(equations), found[1], memory(results.counter(row, "peak_bytes")),
                      duration(results.time(row) / equations), memory(equations * (unknowns + 2) * 8)])
    return table


def scale_table(results):
    table = [["problem", "row", "time", "peak memory", "time an unknown"]]

    def add(text, row, unknowns=None):
        time = results.time(row)
        if time:
            table.append([text, row, duration(time), memory(results.counter(row, "peak_bytes")),
                          duration(time / unknowns) if unknowns else ""])

    add("2000 equations, 2000 unknowns, dense", "qr/solve/2000")
    add("a band of ten million equations", "block_band/open_1000/4x10003")
    for n in (1000, 10000, 100000, 1000000):
        add(f"a band of {count(n)} unknowns, 4 equations each", f"block_band/open/4x{n}", n)
    return table


def machine_list(results, build):
    cpu = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    flags = re.search(r"flags\s*: (.*)", Path("/proc/cpuinfo").read_text())
    known = [f for f in ("sse2", "avx2", "fma", "avx512f") if flags and f in flags[1].split()]
    caches = []
    for index in sorted(Path("/sys/devices/system/cpu/cpu0/cache").glob("index*")):
        level, kind, size = ((index / name).read_text().strip() for name in ("level", "type", "size"))
        if kind != "Instruction":
            caches.append(f"L{level} {size}")
    compiler = re.search(r"CMAKE_CXX_COMPILER:\w+=(.*)", (build / "CMakeCache.txt").read_text())[1]
    version = subprocess.run([compiler, "--version"], capture_output=True, text=True, check=True).stdout
    lines = [f"processor: {cpu[1] if cpu else 'unknown'} ({', '.join(known)}); caches {', '.join(caches)}",
             f"compiler: {version.splitlines()[0]}"]
    lines += [f"{PEERS[peer]}: {results.versions[peer]}" for peer in PEERS if peer in results.versions]
    return "".join(f"- {line}\n" for line in lines)


def all_ratios(results):
    parts = []
    for problem in PROBLEMS:
        if not results.of_problem(problem):
            continue
        parts.append(f"### {problem}\n\n" + as_markdown(ratio_table(results, problem)))
        if (plots.FOLDER / f"{problem}.svg").exists():
            parts.append(f"![{problem}: time and ratios over n](performance/{problem}.svg)\n")
    return "\n".join(parts)


def write(results, build):
    """Fills what stands between <!-- generated: name --> and <!-- end --> in the document."""
    if shutil.which("gnuplot"):
        plots.write(results)
    else:
        print("The plots stay as they are: there is no gnuplot.")
    sections = {"machine": machine_list(results, build), "goals": as_markdown(goal_table(results)),
                "ratios": all_ratios(results), "scale": as_markdown(scale_table(results)),
                "memory": as_markdown(memory_table(results))}
    text = DOCUMENT.read_text()
    for name, content in sections.items():
        text, n = re.subn(rf"(<!-- generated: {name} -->\n).*?(<!-- end -->)",
                          lambda match: match[1] + "\n" + content + "\n" + match[2], text, flags=re.S)
        if n != 1:
            raise SystemExit(f"{DOCUMENT} has no place for the generated section {name}")
    DOCUMENT.write_text(text)
    print(f"written: {DOCUMENT.relative_to(ROOT)}, {plots.FOLDER.relative_to(ROOT)}/")
