# SPDX-License-Identifier: MIT

"""What the programs have measured, and the goals for it."""

import json
import statistics
from pathlib import Path

PROBLEMS = ["product", "matrix_vector", "elementwise", "sums", "qr", "rank_revealing", "small", "cholesky",
            "eigenvectors", "block_band", "inverse"]

OURS = "tnla"
PEERS = {"plain": "plain loops", "floor": "floor", "openblas": "OpenBLAS", "eigen": "Eigen",
         "native": "Eigen native", "gsl": "GSL"}
OTHER_LIBRARIES = ["openblas", "eigen", "native", "gsl"]


class Results:
    """Rows are called problem/operation/size, in the order of the programs' tables."""

    def __init__(self, directory, problems):
        self.rows = []  # each of them once
        self.versions = {}  # of a peer
        self._times = {}  # nanoseconds, of a row and a peer
        self._counters = {}  # of a row of ours
        for problem in problems:
            path = Path(directory) / f"{problem}.json"
            if path.exists():
                self._read(problem, json.loads(path.read_text()))

    def _read(self, problem, data):
        for key, value in data["context"].items():
            if key.startswith("peer:"):
                self.versions[key[len("peer:"):]] = value
        repetitions = [entry for entry in data["benchmarks"] if entry["run_type"] == "iteration"]
        for entry in sorted(repetitions, key=lambda entry: entry["row"]):
            operation, size, peer = entry["name"].split("/")[:3]
            row = f"{problem}/{operation}/{size}"
            if row not in self.rows:
                self.rows.append(row)
            self._times.setdefault((row, peer), []).append(entry["cpu_time"])
            if peer == OURS:
                self._counters[row] = entry

    def peers(self, problem):
        there = {peer for row, peer in self._times if row.startswith(problem + "/")}
        return [peer for peer in PEERS if peer in there]

    def of_problem(self, problem):
        return [row for row in self.rows if row.startswith(problem + "/")]

    def time(self, row, peer=OURS):
        """The median of the repetitions; None where there is none."""
        times = self._times.get((row, peer))
        return statistics.median(times) if times else None

    def counter(self, row, name):
        return self._counters[row][name]

    def ratio(self, row, peer):
        """The time of a peer, of the `best` other library or of another row of ours, divided by ours."""
        ours = self.time(row)
        if peer == "best":
            times = [t for p in OTHER_LIBRARIES if (t := self.time(row, p))]
            return min(times) / ours if ours and times else None
        theirs = self.time(peer) if "/" in peer else self.time(row, peer)
        return theirs / ours if ours and theirs else None


class Goal:
    def __init__(self, row, is_floor, text, remark):
        self.row, self.is_floor, self.remark = row, is_floor, remark
        subject, value = text.split()
        units = {"ns": 1.0, "us": 1e3, "ms": 1e6}
        self.most_time = float(subject) * units[value] if value in units else None
        self.peer = None if self.most_time else subject
        self.least_ratio = None if self.most_time else float(value)

    def reached(self, results):
        """What is compared with the goal; None where it was not measured."""
        return results.time(self.row) if self.most_time else results.ratio(self.row, self.peer)

    def is_met(self, results):
        """Ratios to three digits, times as they are."""
        reached = self.reached(results)
        if self.most_time:
            return reached <= self.most_time
        return float(f"{reached:.3g}") >= self.least_ratio


def read_goals():
    goals = []
    for line in (Path(__file__).parent / "goals.txt").read_text().splitlines():
        if not line.strip() or line.startswith("#"):
            continue
        row, texts, remark = (part.strip() for part in line.split("|"))
        for text in texts.split(","):
            goals.append(Goal(row.rstrip(" *"), row.endswith("*"), text, remark))
    return goals
