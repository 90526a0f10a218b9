#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Runs the examples, and shows what they made on one page.

    gallery.py FOLDER    the folder in which the examples were built; the pictures and gallery.html go there

An example's card holds its first words, its picture, the function that does the work, and what it
printed.  The exit status is that of the first example that fails, and there is no page then."""

import html
import re
import subprocess
import sys
from pathlib import Path

SOURCES = Path(__file__).resolve().parent.parent

# The example, and where the library does its work: the first words of a function.
EXAMPLES = [
    ("linear_regression", "regression.cpp", "Fit fit("),
    ("closed_curve", "curve_fit.cpp", "void CurveFit::get_block_equations("),
    ("principal_axes", "inertia.cpp", "bool principal_axes("),
    ("stiffness", "main.cpp", "void run_statics("),
    ("curve_join", "main.cpp", "TnLaDblMat adapted("),
    ("assertion_handler", "main.cpp", "void report_assertion("),
    ("views/as_pointer", "as_pointer.cpp", "int main("),
    ("views/as_span", "as_span.cpp", "std::span<double> elements("),
    ("views/as_eigen", "as_eigen.cpp", "Eigen::Map<Eigen::MatrixXd> map("),  # where Eigen was found
    ("views/from_row_major", "from_row_major.cpp", "int main("),
]

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>TARNtnla: what the examples made</title>
<style>
:root { color-scheme: light dark; --paper: #ffffff; --card: #f6f7f9; --ink: #1f2933; --faint: #5b6673; --edge: #dde2e8;
  --word: #0b69c7; --text: #a33a0a; }
@media (prefers-color-scheme: dark) { :root { --paper: #0e1115; --card: #14181d; --ink: #e4e8ec; --faint: #98a3af;
  --edge: #2a323b; --word: #6cb2f7; --text: #f59e5b; } }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 60rem; padding: 1.5rem 1rem 4rem; background: var(--paper); color: var(--ink);
  font: 1rem/1.6 system-ui, sans-serif; }
h1 { font-size: 1.6rem; line-height: 1.25; margin: 0 0 .5rem; }
h2 { font-size: 1.25rem; margin: 0 0 .25rem; }
p { margin: 0 0 1rem; }
nav { display: flex; flex-wrap: wrap; gap: .25rem 1rem; margin-bottom: 2rem; }
a { color: var(--word); }
section { margin: 0 0 2.5rem; padding-top: 1.5rem; border-top: 1px solid var(--edge); }
.picture { overflow-x: auto; border: 1px solid var(--edge); border-radius: .5rem; margin-bottom: 1rem; }
.picture svg { display: block; width: 100%%; min-width: 34rem; height: auto; }
pre { overflow-x: auto; margin: 0 0 1rem; padding: .75rem 1rem; background: var(--card); border-radius: .5rem;
  font: .8125rem/1.5 ui-monospace, "DejaVu Sans Mono", monospace; }
.from { color: var(--faint); font-size: .875rem; margin: 0 0 .25rem; }
i { color: var(--faint); } b { color: var(--word); font-weight: normal; } u { color: var(--text); text-decoration: none; }
</style>
</head>
<body>
<h1>What the examples made</h1>
<p>Each is a client of the installed library.  Everything below is from this run.</p>
<nav>%s</nav>
%s
</body>
</html>
"""

WORDS = ("auto|bool|break|case|const|constexpr|continue|double|else|false|for|if|int|new|nullptr|return|static_cast|"
         "std|struct|throw|true|using|void|while|TnLa\\w+|tnla_\\w+")


def function(path, start):
    """The text of a function, with the comment above it."""
    lines = path.read_text().splitlines()
    first = next(i for i, line in enumerate(lines) if line.startswith(start))
    last = lines.index("}", first)
    while lines[first - 1].startswith("//"):
        first -= 1
    return "\n".join(lines[first:last + 1])


def coloured(code):
    def mark(match):
        comment, string, word = (html.escape(part) if part else part for part in match.groups())
        return f"<i>{comment}</i>" if comment else f"<u>{string}</u>" if string else f"<b>{word}</b>"
    parts, end = [], 0
    for match in re.finditer(rf'(//.*)|("(?:\\.|[^"\\])*")|\b({WORDS})\b', code):
        parts += [html.escape(code[end:match.start()]), mark(match)]
        end = match.end()
    return "".join(parts) + html.escape(code[end:])


def summary(path):
    """The first paragraph of the comment with which a file begins, below its licence."""
    words = []
    for line in path.read_text().splitlines()[2:]:
        if not line.removeprefix("//").strip():
            break
        words.append(line.removeprefix("//").strip())
    return " ".join(words)


def title(example):
    return example.replace("/", ": ").replace("_", " ").capitalize()


def card(folder, example, file, start, output):
    sources, picture = SOURCES / example.split("/")[0], folder / f"{example}.svg"
    head = file if "/" in example else "main.cpp"
    drawn = f'<div class="picture">{picture.read_text()}</div>\n' if picture.exists() else ""
    return (f'<section id="{example}">\n<h2>{title(example)}</h2>\n'
            f"<p>{html.escape(summary(sources / head))}</p>\n{drawn}"
            f'<p class="from">examples/{sources.name}/{file}</p>\n'
            f"<pre>{coloured(function(sources / file, start))}</pre>\n"
            f'<p class="from">What it prints</p>\n<pre>{html.escape(output.rstrip())}</pre>\n</section>\n')


def main(folder):
    cards, links = [], []
    for example, file, start in EXAMPLES:
        program = folder / (example if "/" in example else f"{example}/{example}")
        if example == "views/as_eigen" and not program.exists():
            continue
        (folder / f"{example}.svg").unlink(missing_ok=True)
        done = subprocess.run([program], cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        print(done.stdout, flush=True)
        if done.returncode != 0:
            return done.returncode
        cards.append(card(folder, example, file, start, done.stdout))
        links.append(f'<a href="#{example}">{title(example)}</a>')
    page = folder / "gallery.html"
    page.write_text(PAGE % (" ".join(links), "".join(cards)))
    print(f"All of it on one page: {page}")
    return 0


sys.exit(main(Path(sys.argv[1]).resolve()))
