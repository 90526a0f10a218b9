# SPDX-License-Identifier: MIT

"""Runs the fuzzers:  fuzz.py BUILD [--merge] [TARGET ...] [SECONDS]

Two targets run side by side, each half of the SECONDS (60) with the module and half with the one that holds
the portable kernels alone.  They start from tests/fuzz/corpus/TARGET; what they find goes to BUILD/fuzz, and
an input that fails is BUILD/fuzz/TARGET-crash-... there: once the defect is mended, it belongs in the corpus.
--merge does not fuzz: it makes the corpus anew from all that has been found.
"""
import pathlib
import re
import shutil
import subprocess
import sys

TARGETS = ['dense', 'decomposition', 'band', 'readers']
LONGEST = 600  # bytes of an input
MOST = 40  # inputs of a target that --merge keeps: they reach 85 to 100 of 100 edges that all of them reach

here = pathlib.Path(__file__).resolve().parent


class Fuzzer:
    def __init__(self, build, name):
        self.name = name
        self.build = build
        self.program = build / 'tests' / 'fuzz' / ('fuzz_' + name)
        self.corpus = here / 'corpus' / name
        self.found = build / 'fuzz' / name
        self.found.mkdir(parents=True, exist_ok=True)
        self.log = build / 'fuzz' / (name + '.log')
        words = here / (name + '.dict')
        self.options = ['-max_len=%d' % LONGEST, '-timeout=60',
                        '-artifact_prefix=%s-' % (build / 'fuzz' / name)]
        self.options += ['-dict=%s' % words] if words.exists() else []

    def command(self, *arguments):
        return [self.program, *self.options, *arguments]

    def start(self, kernels, seconds):
        environment = {'PATH': '/usr/bin:/bin'}  # with no options of a sanitizer
        if kernels == 'portable':
            environment['LD_LIBRARY_PATH'] = str(self.build / 'tests' / 'portable')
        self.output = self.log.open('w')
        self.process = subprocess.Popen(
            self.command('-len_control=0', '-print_final_stats=1', '-max_total_time=%d' % seconds,
                         self.found, self.corpus),
            stdout=self.output, stderr=subprocess.STDOUT, env=environment)

    def finish(self, kernels):
        """One line for the run; the end of its log, and False, where it failed."""
        code = self.process.wait()
        self.output.close()
        text = self.log.read_text(errors='replace')
        runs = re.findall(r'stat::number_of_executed_units:\s*(\d+)', text)
        edges = re.findall(r'cov: (\d+)', text)
        print('%-14s %-9s %9s executions, %5s edges: %s' % (
            self.name, kernels, runs[-1] if runs else '?', edges[-1] if edges else '?',
            'ok' if code == 0 else 'FAILED'), flush=True)
        if code != 0:
            lines = [line for line in text.splitlines() if not re.match(r'#\d+\s|\s*NEW_FUNC', line)]
            print('\n'.join(lines[-60:]))
        return code == 0

    def merge(self):
        """The corpus anew: the largest of the few inputs that reach every edge, and what has a name."""
        small = self.build / 'fuzz' / (self.name + '-merged')
        shutil.rmtree(small, ignore_errors=True)
        small.mkdir()
        subprocess.run(self.command('-set_cover_merge=1', '-use_counters=0', small, self.corpus, self.found),
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for old in self.corpus.iterdir():
            if re.fullmatch('[0-9a-f]{40}', old.name):
                old.unlink()
        for new in sorted(small.iterdir(), key=lambda file: file.stat().st_size, reverse=True)[:MOST]:
            shutil.copy(new, self.corpus)
        sizes = [file.stat().st_size for file in self.corpus.iterdir()]
        print('%-14s %d inputs, %d bytes' % (self.name, len(sizes), sum(sizes)))


def fuzz(fuzzers, seconds):
    passed = True
    for pair in [fuzzers[i:i + 2] for i in range(0, len(fuzzers), 2)]:
        for kernels in ['best', 'portable']:
            for fuzzer in pair:
                fuzzer.start(kernels, max(1, seconds // 2))
            for fuzzer in pair:
                passed = fuzzer.finish(kernels) and passed
    return passed


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    words = sys.argv[2:]
    seconds = int(words.pop()) if words and words[-1].isdigit() else 60
    merges = '--merge' in words
    names = [word for word in words if word != '--merge'] or TARGETS
    for name in names:
        if name not in TARGETS:
            sys.exit('no target %s; there are %s' % (name, ', '.join(TARGETS)))
    fuzzers = [Fuzzer(build, name) for name in names]
    if merges:
        for fuzzer in fuzzers:
            fuzzer.merge()
        return
    if not fuzz(fuzzers, seconds):
        sys.exit(1)


main()
