#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Linear systems and their exact solutions, for exact_solutions_test.cpp.

    exact_problems.py FILE            writes the file
    exact_problems.py --check FILE    tells whether it is what would be written

Every entry of A and B is a double, so the problem that is stored is the one that was solved: in integers and
fractions, without a rounding until the solution is written.  The test explains the bounds; this is what it
takes for them, all of it from the exact inverse or pseudo-inverse:

    problem NAME m n p rank verdict tol
    A, B      row by row
    X         the solution of minimal length, rounded to double; n rows of p
    bound     for every element of X; times the relative backward error, it bounds its error (see `bounds`)
    sensitivity   sum |row i of the inverse| |column i of A|: the condition of A with columns of length 1
    det       of a square matrix of full rank, rounded
"""

import math
import sys
from fractions import Fraction as F
from operator import mul

# --- Exact linear algebra -------------------------------------------------------------------------------


def integers(A):
    """A as integers, times a common factor."""
    factor = math.lcm(*(x.denominator for row in A for x in row))
    return [[x.numerator * (factor // x.denominator) for x in row] for row in A], factor


def reduced(A, B):
    """The reduced row echelon form of [A B] by fraction-free elimination, and its pivot columns."""
    M, _ = integers([list(a) + list(b) for a, b in zip(A, B)])
    pivots, previous = [], 1
    for col in range(len(A[0])):
        row = len(pivots)
        found = next((i for i in range(row, len(M)) if M[i][col] != 0), None)
        if found is None:
            continue
        M[row], M[found] = M[found], M[row]
        pivot = M[row][col]
        for i in range(len(M)):
            if i != row:
                factor = M[i][col]
                M[i] = [(pivot * x - factor * y) // previous for x, y in zip(M[i], M[row])]
        pivots.append(col)
        previous = pivot
    return [[F(x, M[i][c]) for x in M[i]] for i, c in enumerate(pivots)], pivots


def eye(n):
    return [[int(i == j) for j in range(n)] for i in range(n)]


def times(A, B):
    (A, a), (B, b) = integers(A), integers(B)
    columns = list(zip(*B))
    return [[F(sum(map(mul, row, column)), a * b) for column in columns] for row in A]


def transposed(A):
    return [list(column) for column in zip(*A)]


def inverse(A):
    n = len(A)
    rows, pivots = reduced(A, eye(n))
    assert pivots == list(range(n))
    return [row[n:] for row in rows]


def pseudo_inverse(A):
    """By A = C E, with the pivot columns C and the echelon form E; and the rank."""
    rows, pivots = reduced(A, [[] for _ in A])
    if not pivots:
        return [[F(0)] * len(A) for _ in A[0]], 0
    C = [[F(row[c]) for c in pivots] for row in A]
    Ct, Et = transposed(C), transposed(rows)
    left = times(inverse(times(Ct, C)), Ct)
    if len(pivots) == len(A[0]):
        return left, len(pivots)
    return times(times(Et, inverse(times(rows, Et))), left), len(pivots)


def squared_diagonal(A):
    """R(j, j)^2 of A = Q R with independent columns: quotients of the leading minors of A'A."""
    G, factor = integers(times(transposed(A), A))
    diagonal, previous = [], 1
    for k in range(len(G)):
        diagonal.append(F(G[k][k], previous * factor))
        for i in range(k + 1, len(G)):
            G[i] = [(G[k][k] * x - G[i][k] * y) // previous for x, y in zip(G[i], G[k])]
        previous = G[k][k]
    return diagonal


def determinant(A):
    M, factor = integers(A)
    sign, previous = 1, 1
    for k in range(len(M)):
        found = next(i for i in range(k, len(M)) if M[i][k] != 0)
        if found != k:
            M[k], M[found], sign = M[found], M[k], -sign
        for i in range(k + 1, len(M)):
            M[i] = [(M[k][k] * x - M[i][k] * y) // previous for x, y in zip(M[i], M[k])]
        previous = M[k][k]
    return F(sign * previous, factor ** len(M))


# --- Lengths, rounded up --------------------------------------------------------------------------------


def square(vector):
    (whole_,), factor = integers([vector])
    return F(sum(map(mul, whole_, whole_)), factor**2)


def up(x):
    """A little above x, so that no rounding of a double takes a bound below its value."""
    return float(x) * (1 + 2.0**-40)


def length(vector):
    return up(math.sqrt(up(square(vector))))


# --- Problems -------------------------------------------------------------------------------------------

problems = []


def rounded(rows):
    """The same rows, of doubles.  An integer or a fraction that no double holds is refused."""
    for row in rows:
        for x in row:
            assert float(x) == x, x  # an exact comparison
    return [[F(x) for x in row] for row in rows]


def bounds(A, B, X, P):
    """For every element of X, (1) for independent columns, (2) for the others.

    If every column of A has an error of eps times its length, and B one of eps times its length, then to
    first order (Wedin) the solution P b moves by P (f - E x) + (A'A)^+ E' r + (I - P A) E' P' x, with the
    residual r = b - A x.  (1) takes that row by row; its last term is zero.  (2) takes the norm.
    """
    n, p = len(A[0]), len(B[0])
    columns = [length(c) for c in transposed(A)]
    rows_of_p = [length(row) for row in P]
    residual = [[b - ax for b, ax in zip(rb, rax)] for rb, rax in zip(B, times(A, X))]
    full_rank = len(A) >= n and times(P, A) == eye(n)
    gram = times(P, transposed(P)) if full_rank else None
    result = [[0.0] * p for _ in range(n)]
    for c in range(p):
        x = [row[c] for row in X]
        r = length([row[c] for row in residual])
        moved = length([row[c] for row in B]) + sum(a * up(abs(xi)) for a, xi in zip(columns, x))
        if full_rank:
            for i in range(n):
                by_r = sum(up(abs(g)) * a for g, a in zip(gram[i], columns)) * r
                result[i][c] = rows_of_p[i] * moved + by_r
        else:
            a, pseudo = length(sum(A, [])), length(sum(P, []))
            away = length([row[0] for row in times(transposed(P), [[xi] for xi in x])])
            whole = pseudo * (length([row[c] for row in B]) + a * length(x)) + pseudo**2 * a * r + a * away
            for i in range(n):
                result[i][c] = whole
    return result


def add(name, A, B, allow=None):
    """A problem, unless it is too ill-conditioned for a bound, or outside the usable range."""
    A, B = rounded(A), rounded(B)
    m, n = len(A), len(A[0])
    P, rank = pseudo_inverse(A)
    X = times(P, B)
    verdict = False
    largest = length(sum(A, []))
    if rank == n:
        diagonal = squared_diagonal(A)
        spread = max(diagonal) / min(diagonal)
        assert min(diagonal) >= F(10) ** -18 and not F(98, 100) < spread / 10**20 < F(102, 100), name
        verdict = spread <= 10**20
        sensitivity = sum(length(r) * length(c) for r, c in zip(P, transposed(A)))
    else:
        sensitivity = length(sum(P, [])) * largest if rank else 0.0
    # The noise of what is zero is far below tol, and tol far below every diagonal element that is not.
    tol = 2.0 ** math.floor(math.log2(largest) - 26) if 0 < rank < n else 1e-10
    if rank < n and rank > 0:
        assert 1 / length(sum(P, [])) > 64 * tol, name
    if sensitivity > 1e12:
        assert allow == "too hard", name
        return
    problems.append((name, A, B, X, rank, verdict, tol, bounds(A, B, X, P), sensitivity))


def number(x):
    """Digits if x is a small integer, otherwise the shortest hexadecimal double, rounded to nearest."""
    x = float(x)
    if x == int(x) and abs(x) < 2**53:
        return str(int(x))
    mantissa, exponent = x.hex().split("p")
    return f"{mantissa.rstrip('0') if '.' in mantissa else mantissa}p{int(exponent)}"


def three_digits_up(x):
    return f"{x * 1.01:.2e}"


def text():
    lines = []
    for name, A, B, X, rank, verdict, tol, bound, sensitivity in problems:
        m, n, p = len(A), len(A[0]), len(B[0])
        lines.append(f"problem {name} {m} {n} {p} {rank} {int(verdict)} {number(tol)}")
        for head, rows in (("A", A), ("B", B), ("X", X)):
            lines.append(head + " " + " ".join(number(x) for row in rows for x in row))
        lines.append("bound " + " ".join(three_digits_up(x) for row in bound for x in row))
        lines.append("sensitivity " + three_digits_up(sensitivity))
        if m == n == rank:
            lines.append("det " + number(determinant(A)))
    return "\n".join(lines) + "\n"


# --- Matrices of numerical analysis, all with integer or dyadic entries ---------------------------------


def matrix(n, f, m=None):
    return [[f(i, j) for j in range(1, n + 1)] for i in range(1, (m or n) + 1)]


def whole(A):
    """Times the least factor that makes it integer."""
    return integers(A)[0]


def hilbert(n):
    return whole(matrix(n, lambda i, j: F(1, i + j - 1)))


def inverse_hilbert(n):
    return [[int(x) for x in row] for row in inverse(matrix(n, lambda i, j: F(1, i + j - 1)))]


def lotkin(n):
    return whole(matrix(n, lambda i, j: F(1) if i == 1 else F(1, i + j - 1)))


def cauchy(n):
    return whole(matrix(n, lambda i, j: F(1, i + j)))


def parter(n):
    return whole(matrix(n, lambda i, j: F(2, 2 * (i - j) + 1)))


def vandermonde(nodes):
    return [[x**k for k in range(len(nodes))] for x in nodes]


def pascal(n):
    return matrix(n, lambda i, j: math.comb(i + j - 2, i - 1))


def frank(n):
    return matrix(n, lambda i, j: 0 if j < i - 1 else n + 1 - max(i, j))


def wilkinson(n):
    """Twice |n|/2, ..., on the diagonal, with ones beside."""
    return matrix(n, lambda i, j: abs(n + 1 - 2 * i) if i == j else int(abs(i - j) == 1))


def growth(n):
    """For which elimination with partial pivoting loses everything."""
    return matrix(n, lambda i, j: 1 if i == j or j == n else -int(i > j))


def kahan(n):
    """Upper triangular, with c = 3/5 and s = 4/5, times 5^n: of numerical rank n - 1 long before its diagonal."""
    return matrix(n, lambda i, j: 0 if i > j else (5 if i == j else -3) * 4 ** (i - 1) * 5 ** (n - i))


def laeuchli(n, power):
    """A row of ones above a small multiple of the identity."""
    return matrix(n, lambda i, j: 1 if i == 1 else F(int(i == j + 1), 2**power), n + 1)


def moler(n):
    return matrix(n, lambda i, j: i if i == j else min(i, j) - 2)


def minij(n):
    return matrix(n, min)


def lehmer(n):
    return whole(matrix(n, lambda i, j: F(min(i, j), max(i, j))))


def second_difference(n):
    return matrix(n, lambda i, j: 2 if i == j else -int(abs(i - j) == 1))


def toeplitz(n, diagonals):
    return matrix(n, lambda i, j: diagonals.get(j - i, 0))


def clement(n):
    return matrix(n, lambda i, j: i if j == i + 1 else n - j if j == i - 1 else 0)


def redheffer(n):
    return matrix(n, lambda i, j: int(j == 1 or j % i == 0))


def gcd_matrix(n):
    return matrix(n, math.gcd)


def hadamard(n):
    return matrix(n, lambda i, j: 1 - 2 * (bin((i - 1) & (j - 1)).count("1") % 2))


def rosser():
    upper = [[611, 196, -192, 407, -8, -52, -49, 29], [899, 113, -192, -71, -43, -8, -44],
             [899, 196, 61, 49, 8, 52], [611, 8, 44, 59, -23], [411, -599, 208, 208], [411, 208, 208],
             [99, -911], [99]]
    return matrix(8, lambda i, j: upper[min(i, j) - 1][abs(i - j)])


def odd_magic(n):
    """The Siamese method."""
    square_ = [[0] * n for _ in range(n)]
    i, j = 0, n // 2
    for k in range(1, n * n + 1):
        square_[i][j] = k
        up_i, up_j = (i - 1) % n, (j + 1) % n
        i, j = ((i + 1) % n, j) if square_[up_i][up_j] else (up_i, up_j)
    return square_


def magic4(n):
    """Of doubly even order: rank 3."""
    return matrix(n, lambda i, j: n * n + 1 - (n * (i - 1) + j) if (i % 4 in (0, 1)) == (j % 4 in (0, 1)) else
                  n * (i - 1) + j)


# --- All of them ----------------------------------------------------------------------------------------


def generator(state):
    """splitmix64, as in support/values.h."""
    mask = 2**64 - 1
    while True:
        state = (state + 0x9E3779B97F4A7C15) & mask
        z = ((state ^ state >> 30) * 0xBF58476D1CE4E5B9) & mask
        z = ((z ^ z >> 27) * 0x94D049BB133111EB) & mask
        yield z ^ z >> 31


def make():
    random = generator(20)

    def draw(low, high):
        return low + next(random) % (high - low + 1)

    def entries(m, n, most):
        return [[draw(-most, most) for _ in range(n)] for _ in range(m)]

    def side(m):
        """Ones, alternating, counted, or random."""
        kind = draw(0, 3)
        return [[[1, (-1) ** i, i + 1, draw(-99, 99)][kind]] for i in range(m)]

    def of_rank(m, n, rank, most):
        return times(entries(m, rank, most), entries(rank, n, most))

    def named(name, A, square_=True):
        if square_ and len(A) <= 8:
            add(f"{name}-inverse", A, eye(len(A)), "too hard")
        add(name, A, side(len(A)), "too hard")

    for n in range(1, 9):
        named(f"hilbert-{n}", hilbert(n))
        named(f"inverse-hilbert-{n}", inverse_hilbert(n))
        named(f"lotkin-{n}", lotkin(n))
        named(f"cauchy-{n}", cauchy(n))
        named(f"vandermonde-{n}", vandermonde(range(1, n + 1)))
        named(f"vandermonde-dyadic-{n}", vandermonde([F(i, 8) for i in range(1, n + 1)]))
    for n in range(2, 11):
        named(f"pascal-{n}", pascal(n))
        named(f"frank-{n}", frank(n))
        named(f"moler-{n}", moler(n))
    for n in range(3, 13, 3):
        named(f"wilkinson-{n}", wilkinson(n))
        named(f"growth-{n}", growth(n))
        named(f"kahan-{n}", kahan(n))
        named(f"min-{n}", minij(n))
        named(f"lehmer-{n}", lehmer(n))
        named(f"parter-{n}", parter(n))
        named(f"second-difference-{n}", second_difference(n))
        named(f"pentadiagonal-{n}", toeplitz(n, {-2: 1, -1: -4, 0: 6, 1: -4, 2: 1}))
        named(f"grcar-{n}", toeplitz(n, {-1: -1, 0: 1, 1: 1, 2: 1, 3: 1}))
        named(f"redheffer-{n}", redheffer(n))
        named(f"gcd-{n}", gcd_matrix(n))
    for n in (2, 4, 6, 10):
        named(f"clement-{n}", clement(n))
    for n in (2, 4, 8):
        named(f"hadamard-{n}", hadamard(n))
    for n in (3, 5, 7, 9):
        named(f"magic-{n}", odd_magic(n))
    named("rosser", rosser(), False)

    for k in range(48):
        n = 1 + k % 12
        add(f"random-{k}", entries(n, n, 10 ** (1 + k % 3)), entries(n, 1 + k % 3, 99))
    for k in range(12):
        n = 2 + k % 8
        half = entries(n, n, 5)
        gram = [[x + (n if i == j else 0) for j, x in enumerate(row)] for i, row in
                enumerate(times(transposed(half), half))]
        add(f"definite-{k}", gram, entries(n, 2, 20))

    # More rows than columns: least squares.
    for n in range(2, 9):
        for power in (4, 12, 20):
            add(f"laeuchli-{n}-{power}", laeuchli(n, power), [[i] for i in range(n + 1)])
    for k in range(24):
        n = 1 + k % 6
        m = n + 1 + k % 7
        add(f"overdetermined-{k}", entries(m, n, 20), entries(m, 1 + k % 2, 50))
    for n in range(2, 7):
        add(f"hilbert-tall-{n}", whole(matrix(n, lambda i, j: F(1, i + j - 1), 2 * n)), side(2 * n))
        add(f"polynomial-{n}", [[F(i, 4) ** k for k in range(n)] for i in range(12)], side(12))

    # More columns than rows, or dependent columns: the solution of minimal length.
    for k in range(20):
        m = 1 + k % 6
        n = m + 1 + k % 5
        add(f"underdetermined-{k}", entries(m, n, 20), entries(m, 1 + k % 2, 50))
    for k in range(24):
        m, n = 3 + k % 6, 3 + k // 3 % 6
        add(f"deficient-{k}", of_rank(m, n, 1 + k % (min(m, n) - 1), 6), entries(m, 1 + k % 2, 50))
    for n in (4, 8, 12):
        add(f"magic-even-{n}", magic4(n), side(n))
    for n in (3, 6, 9, 12):
        add(f"ones-{n}", [[1] * n for _ in range(n)], side(n))
        add(f"first-column-zero-{n}", [[0] + row for row in entries(n, n - 1, 30)], side(n))
        add(f"neighbours-{n}", matrix(n, lambda i, j: 1 if i == j else -int(j == i % n + 1)), side(n))
    add("zero", [[0, 0], [0, 0]], [[1], [2]])


def main(arguments):
    make()
    if len(arguments) == 1:
        with open(arguments[0], "w", encoding="ascii") as file:
            file.write(text())
    elif len(arguments) == 2 and arguments[0] == "--check":
        with open(arguments[1], encoding="ascii") as file:
            if file.read() != text():
                sys.exit(f"{arguments[1]} is not what {sys.argv[0]} writes")
        print(f"{len(problems)} problems solved again: the same")
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main(sys.argv[1:])
