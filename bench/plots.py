# SPDX-License-Identifier: MIT

"""Time over size, ours and the peers', and the ratios underneath: one picture a problem, by gnuplot."""

import re
import subprocess
from pathlib import Path

from results import OURS, PEERS

FOLDER = Path(__file__).resolve().parent.parent / "docs" / "performance"

# The rows of the curve; the last group is n.
ROWS = {
    "product": r"plain/(\d+)", "matrix_vector": r"product/(\d+)", "elementwise": r"lincomb/(\d+)",
    "sums": r"norm/(\d+)", "qr": r"solve/(\d+)", "rank_revealing": r"full/(\d+)", "small": r"two_sides/(\d+)",
    "cholesky": r"factor_solve/(\d+)", "eigenvectors": r"basis/(\d+)", "block_band": r"open/4x(\d+)",
    "inverse": r"inverse/(\d+)",
}

COLOURS = {OURS: "#000000", "plain": "#999999", "floor": "#c05000", "openblas": "#0060c0", "eigen": "#d08000",
           "native": "#b00020", "gsl": "#208040"}

SCRIPT = """
set terminal svg size 760,640 font 'sans-serif,13' background rgb 'white'
set output '{path}'
set multiplot layout 2,1
set logscale xy
set xrange [{least}:{most}]
set xtics ({sizes})
unset mytics
set grid lc rgb '#dddddd'
set key outside right top
set lmargin 11
set rmargin 19
set title '{title}'
set ylabel 'time'
set format y '%.0s %cs'
plot {times}
unset title
unset key
set xlabel 'n'
set ylabel 'time of the peer / ours'
set format y '%g'
set ytics add (0.02, 0.05, 0.2, 0.5, 2, 5, 20, 50)
set arrow from graph 0, first 1 to graph 1, first 1 nohead lc rgb 'black' front
plot {ratios}
"""


def plot(results, problem):
    rows = {}
    for row in results.of_problem(problem):
        found = re.fullmatch(f"{problem}/{ROWS[problem]}", row)
        if found:
            rows[int(found[1])] = row
    blocks, times, ratios = [], [], []
    for peer in [OURS, *results.peers(problem)]:
        points = [(n, results.time(row, peer), results.ratio(row, peer)) for n, row in sorted(rows.items())
                  if results.time(row, peer)]
        if not points:
            continue
        lines = "".join(f"{n} {time * 1e-9:.6g} {ratio:.6g}\n" for n, time, ratio in points)
        blocks.append(f"${peer} << END\n{lines}END\n")
        style = f"with linespoints pt 7 ps 0.5 lw 2 lc rgb '{COLOURS[peer]}'"
        times.append(f"${peer} using 1:2 {style} title '{PEERS.get(peer, 'ours')}'")
        if peer != OURS:
            ratios.append(f"${peer} using 1:3 {style}")
    title = f"{problem}/{ROWS[problem]}".replace(r"(\d+)", "n").replace("_", r"\_")
    script = SCRIPT.format(path=FOLDER / f"{problem}.svg", title=title, sizes=", ".join(map(str, sorted(rows))),
                           least=0.8 * min(rows), most=1.25 * max(rows), times=", ".join(times),
                           ratios=", ".join(ratios))
    subprocess.run(["gnuplot"], input="".join(blocks) + script, text=True, check=True)


def write(results):
    FOLDER.mkdir(parents=True, exist_ok=True)
    for problem in ROWS:
        if results.of_problem(problem) and results.peers(problem):
            plot(results, problem)
