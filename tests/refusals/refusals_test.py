#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

# What a client cannot write: a call that the library has no answer to is refused by the compiler, and its message
# holds the sentence that says what to write.  And what a client can write all the same: the calls beside those,
# which take the overload that they always took.
# usage: refusals_test.py <compiler> <folder of the headers> ...
import multiprocessing.pool, subprocess, sys

WORLD = """
#include <tarntnla.h>
#include <type_traits>
#include <utility>
#include <vector>
using Small = TnLaTSmallMat<3, 3, double>;
struct Derived : TnLaDblMat {};
struct Text { Text(const Text&); };
struct Pair { int a, b; };
TnLaDblMat A, X, Z; const TnLaDblMat B; Small S, T; TnLaDblVec b, x; TnLaTSmallVec<3, double> s; TnArray<double> a;
const TnLaTSmallMat<2, 2, double> two; std::vector<double> v; Derived D; const double* p; int n, rank; long l;
"""

SQUARE = "a small matrix is square: use TnLaDblMat for other shapes"
ROWS = "a small matrix has 1 to 12 rows: use TnLaDblMat for other sizes"
ELEMENTS = "a small vector has 1 to 12 elements: use TnLaDblVec for other sizes"
MATRIX_OF_DOUBLE = "a small matrix holds double: write TnLaTSmallMat<N, N, double>"
VECTOR_OF_DOUBLE = "a small vector holds double: write TnLaTSmallVec<N, double>"
BYTES = "a TnArray moves its elements as bytes: use std::vector for this type"
MATRICES = "M is TnLaDblMat or TnLaTSmallMat<N, N, double>, N = 1 to 12"
ONE_TYPE = "pass matrices, b as TnLaDblMat(b, false)"
NEITHER = "(A, B, X, 0): write nullptr, or a tolerance above 0"
ZERO = "for a literal 0 write 0.0"
NO_POINTER = "the first argument is a pointer to double; for none write nullptr"

REFUSED = [
    ("TnLaTSmallMat<0, 0, double> m;", ROWS),
    ("TnLaTSmallMat<13, 13, double> m;", ROWS),
    ("auto f = [](const TnLaTSmallMat<13, 13, double>& m) { return m(0, 0); };", ROWS),
    ("TnLaTSmallMat<2, 3, double> m;", SQUARE),
    ("TnLaTSmallMat<3, 3, float> m;", MATRIX_OF_DOUBLE),
    ("TnLaTSmallMat<3, 3, const double> m;", MATRIX_OF_DOUBLE),
    ("TnLaTSmallVec<-1, double> m;", ELEMENTS),
    ("TnLaTSmallVec<0, double> m;", ELEMENTS),
    ("TnLaTSmallVec<13, double> m;", ELEMENTS),
    ("TnLaTSmallVec<3, long double> m;", VECTOR_OF_DOUBLE),
    ("TnArray<std::vector<int>> m;", BYTES),
    ("TnArray<Text> m;", BYTES),
    ("TnLaTQRDecompo<TnLaDblVec> m(b);", MATRICES),
    ("TnLaTQRDecompo<Derived> m(D);", MATRICES),
    ("TnLaTQRDecompo<TnLaTSmallMat<13, 13, double>>* m; m->n_trafo();", MATRICES),

    ("tnla_linearsolve(A, B, X, 0);", NEITHER),
    ("tnla_linearsolve(A, B, X, 0L);", NEITHER),
    ("tnla_linearsolve(A, B, X, NULL);", NEITHER),
    ("tnla_linearsolve(S, S, T, 0);", NEITHER),
    ("tnla_linearsolve<Small>(S, S, T, 0);", NEITHER),
    ("tnla_linearsolve<TnLaDblMat>(A, B, X, 0);", NEITHER),
    ("tnla_linearsolve(A, b, x);", ONE_TYPE),
    ("tnla_linearsolve(A, b, X, 1e-10, &rank);", ONE_TYPE),
    ("tnla_linearsolve(S, s, s);", ONE_TYPE),
    ("tnla_linearsolve(v, v, v);", ONE_TYPE),

    ("TnLaDblMat m(0, 3, 0);", ZERO),
    ("A.initialize(0);", ZERO),
    ("b.initialize(0);", ZERO),
    ("s.initialize(0);", ZERO),
    ("TnLaDblVec m(0, 3);", NO_POINTER),
    ("TnLaDblVec m{3, 4};", NO_POINTER),
    ("TnLaDblVec m(NULL, 3);", NO_POINTER),
    ("TnLaTSmallVec<3, double> m(0, 3);", NO_POINTER),
    ("TnLaTSmallVec<2, double> m{3.0, 4};", NO_POINTER),
]

# A type in the first place is that of the call, which tells the overloads of tnla_linearsolve apart.
ACCEPTED = [
    ("bool", "tnla_linearsolve(A, B, X)"),
    ("bool", "tnla_linearsolve(A, B, X, nullptr)"),
    ("bool", "tnla_linearsolve(A, B, X, &Z)"),
    ("bool", "tnla_linearsolve(D, B, X)"),
    ("bool", "tnla_linearsolve(A, D, D, nullptr)"),
    ("bool", "tnla_linearsolve(A, {b, false}, X)"),
    ("bool", "tnla_linearsolve({p, 3, 3}, {p, 3, 1}, X, nullptr)"),
    ("bool", "tnla_linearsolve<TnLaDblMat>(A, B, X, nullptr)"),
    ("bool", "tnla_linearsolve<TnLaDblMat>(D, B, X, &Z)"),
    ("bool", "tnla_linearsolve(S, S, T)"),
    ("bool", "tnla_linearsolve(S, S, T, nullptr)"),
    ("bool", "tnla_linearsolve<Small>(S, S, T, &S)"),
    ("void", "tnla_linearsolve(A, B, X, 1e-10)"),
    ("void", "tnla_linearsolve(A, B, X, 1)"),
    ("void", "tnla_linearsolve(A, B, X, n)"),
    ("void", "tnla_linearsolve(A, B, X, 0.0)"),
    ("void", "tnla_linearsolve(A, B, X, 0, &rank)"),  # a tolerance of 0: asserted while the program runs
    ("void", "tnla_linearsolve(A, B, X, 0, nullptr, nullptr)"),
    ("void", "tnla_linearsolve(A, B, X, 1e-10, 0, 0)"),
    ("void", "tnla_linearsolve<TnLaDblMat>(A, B, X, n)"),
    ("void", "tnla_linearsolve(S, S, T, 1)"),
    ("void", "tnla_linearsolve(S, S, T, n, nullptr, nullptr)"),
    ("void", "tnla_linearsolve(two, two, const_cast<TnLaTSmallMat<2, 2, double>&>(two), 1e-10, &rank, nullptr)"),
    ("void", "tnla_inverse(A, X, 0)"),
    ("void", "tnla_inverse(A, X, 1, 0)"),
    ("void", "A.initialize(n)"),
    ("void", "A.initialize(1)"),
    ("void", "A.initialize(nullptr)"),
    ("void", "b.initialize(l)"),
    ("void", "b.initialize(nullptr)"),
    ("void", "s.initialize(n)"),
    ("void", "s.initialize(1.0f)"),
    ("double", "tnla_norm(3, p, 0)"),
    ("TnLaDblMat", "TnLaDblMat(3, 3, 0)"),
    ("TnLaDblMat", "TnLaDblMat(0, 3, 0.0)"),
    ("TnLaDblMat", "TnLaDblMat(n, n, n)"),
    ("TnLaDblMat", "TnLaDblMat(nullptr, 0, 3)"),
    ("TnLaDblVec", "TnLaDblVec(nullptr, 0)"),
    ("TnLaDblVec", "TnLaDblVec(p, 0)"),
    ("TnLaDblVec", "TnLaDblVec(0, 0, 0)"),
    ("TnLaDblVec", "TnLaDblVec(a)"),
    ("TnLaTSmallVec<3 COMMA double>", "TnLaTSmallVec<3, double>(p, n)"),
    ("TnLaTSmallVec<3 COMMA double>", "TnLaTSmallVec<3, double>(nullptr, 0)"),
    ("int", "own::tnla_linearsolve(v, v, v)"),
    ("int", "tnla_linearsolve(own::Matrix(), own::Matrix(), own::x)"),
]

# Beside the calls: a class of a client may have its own function of the name; and what cannot be constructed says
# so to whoever asks.
CLIENTS_OWN = """
namespace own {
struct Matrix {} x;
int tnla_linearsolve(const Matrix&, const Matrix&, Matrix&);
int tnla_linearsolve(const std::vector<double>&, const std::vector<double>&, std::vector<double>&);
}
static_assert(!std::is_constructible_v<TnLaDblVec, int, int>);
static_assert(!std::is_constructible_v<TnLaTSmallVec<3, double>, int, int>);
static_assert(std::is_constructible_v<TnLaDblVec, double*, int>);
static_assert(std::is_trivially_copyable_v<Small> && std::is_trivially_copyable_v<TnLaTSmallVec<3, double>>);
"""


def compiled(task):
    compiler, folders, code = task
    command = [compiler, "-std=c++17", "-fsyntax-only", *(f"-I{folder}" for folder in folders), "-x", "c++", "-"]
    run = subprocess.run(command, input=code, capture_output=True, text=True, env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"})
    return run.returncode == 0, run.stderr


def main(compiler, *folders):
    refused = [f"{WORLD}void f() {{ {code} }}\n" for code, _ in REFUSED]
    calls = "\n".join(f"static_assert(std::is_same_v<decltype({code}), {kind}>);\nvoid f{i}() {{ {code}; }}"
                      for i, (kind, code) in enumerate(ACCEPTED)).replace(" COMMA", ",")
    sources = [WORLD + CLIENTS_OWN + calls, *refused]
    with multiprocessing.pool.ThreadPool(2) as pool:
        (accepted, message), *answers = pool.map(compiled, [(compiler, folders, source) for source in sources], 1)
    faults = [] if accepted else [f"refused, but legal:\n{message}"]
    for (code, sentence), (passed, message) in zip(REFUSED, answers):
        if passed:
            faults.append(f"compiles: {code}\n")
        elif sentence not in message:
            faults.append(f"{code}\n  does not say '{sentence}':\n{message}")
    print("\n".join(faults), end="")
    print(f"{len(ACCEPTED)} calls accepted, {len(REFUSED)} refused" if not faults else "FAILED")
    return 1 if faults else 0


sys.exit(main(*sys.argv[1:]))
