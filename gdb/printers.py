# SPDX-License-Identifier: MIT

# How gdb shows the types of TARNtnla: the shape first, then the elements, a matrix row by row.
#
# gdb loads this file by itself with the module that it is installed for (docs/debugging.md).  The fields are read
# from memory, at the places that the module promises on 64-bit machines, because compilers leave out of a program's
# debug information what they expect in that of the module, which has none.  Nothing in the program is called; of
# memory that holds no such object, or holds one no more, that is said.  `info pretty-printer` lists what is here,
# and `print/r` shows an object without it.

import re
import struct

import gdb
import gdb.printing
import gdb.types

MOST = 1 << 20  # numbers in one array that is shown whole, as part of something else

DENSE_MATRIX_ARRAY, DENSE_VECTOR_ARRAY, REFLECTION_U, QR_TRAFOS, CHOLESKY_SOLUTION = 16, 0, 16, 24, 56


def memory(address, n):
    return bytes(gdb.selected_inferior().read_memory(address, n)) if n else b""


def order():
    return "<" if "little" in gdb.execute("show endian", to_string=True) else ">"


def at(address, *kinds):
    """The fields of these kinds, as of struct, that lie at an address one behind the other."""
    layout = order() + "".join(kinds)
    return struct.unpack(layout, memory(address, struct.calcsize(layout)))


def numbers(raw, *shape):
    """Doubles as they lie in `raw`, as an array that gdb prints like any other; the last index is the fastest."""
    kind = gdb.lookup_type("double")
    for n in reversed(shape):
        kind = kind.array(n - 1)
    return gdb.Value(raw, kind)


def named(parts):
    return ((f"[{i}]", part) for i, part in enumerate(parts))


def count(n, what):
    return f"{n} {what}{'' if n == 1 else 's'}"


class Array:
    """A TnArray; `width` is the size of an element."""

    def __init__(self, address, width=8):
        self.data, self.capacity, self.size = at(address + 16, "Q", "Q", "Q")
        self.width = width
        self.check()

    @classmethod
    def held_by(cls, value, *path):
        """That of an object which gdb holds itself, as it does with what a function returns."""
        for name in path:
            value = value[name]
        array = cls.__new__(cls)
        array.data, array.capacity, array.size = (int(value[name]) for name in ("data_", "capacity_", "size_"))
        array.width = 8
        array.check()
        return array

    def check(self):
        if self.size > self.capacity or (self.data == 0) != (self.capacity == 0):
            raise gdb.error(f"{self.size} of {self.capacity} elements at {self.data:#x}")
        if self.size:
            memory(self.data, 1), memory(self.data + self.width * self.size - 1, 1)

    def elements(self, kind):
        pointer = gdb.Value(self.data).cast(kind.pointer())
        return named(pointer[i] for i in range(self.size))


def list_of(address, n):
    return "{}" if n < 1 else numbers(memory(address, 8 * n), n) if n <= MOST else count(n, "element")


class Matrix:
    """m x n; column(j, i, k) are the bytes of the k elements of column j from row i on."""

    def __init__(self, m, n, column):
        self.m, self.n, self.column = m, n, column
        self.shape = f"{m} x {n}"

    @classmethod
    def of_block(cls, m, n, address):
        """Column-major, without a gap."""
        return cls(m, n, lambda j, i, k: memory(address + 8 * (j * m + i), 8 * k))

    @classmethod
    def dense(cls, m, n, array):
        if m * n != array.size:
            raise gdb.error(f"{m} x {n} of {array.size} elements")
        return cls.of_block(m, n, array.data)

    @classmethod
    def dense_at(cls, address):
        return cls.dense(*at(address, "Q", "Q"), Array(address + DENSE_MATRIX_ARRAY))

    def rows(self):
        """One after the other, because gdb seldom asks for all of them."""
        some = max(1, min(256, MOST // max(1, self.n)))
        for first in range(0, self.m if self.n else 0, some):
            k = min(some, self.m - first)
            columns = [self.column(j, first, k) for j in range(self.n)]
            yield from (b"".join(c[8 * i:8 * i + 8] for c in columns) for i in range(k))

    def parts(self):
        return named(numbers(row, self.n) for row in self.rows())

    def table(self):
        if not 0 < self.m * self.n <= MOST:
            return self.shape
        return numbers(b"".join(self.rows()), self.m, self.n)


class Printer:
    """Of the object, look() makes the line to print, and a list of parts with their names."""

    def __init__(self, value):
        self.value = value.referenced_value() if value.type.code == gdb.TYPE_CODE_REF else value
        self.type = gdb.types.get_basic_type(self.value.type)
        self.address = None if self.value.address is None else int(self.value.address)
        try:
            self.line, self.parts = self.look()
        except gdb.error as problem:
            self.line, self.parts = f"no {self.type.name}, or not yet, or no more: {problem}", ()

    def to_string(self):
        return self.line

    def children(self):
        return iter(self.parts)


class ArrayPrinter(Printer):
    def look(self):
        kind = self.type.template_argument(0)
        array = Array(self.address, kind.sizeof)
        return f"{count(array.size, 'element')}, capacity {array.capacity}", array.elements(kind)


class DenseVector(Printer):
    def look(self):
        array = Array.held_by(self.value, "array_") if self.address is None else \
            Array(self.address + DENSE_VECTOR_ARRAY)
        return count(array.size, "element"), array.elements(gdb.lookup_type("double"))


class DenseMatrix(Printer):
    def look(self):
        matrix = Matrix.dense_at(self.address) if self.address is not None else \
            Matrix.dense(int(self.value["n_rows_"]), int(self.value["n_cols_"]), Array.held_by(self.value, "array_"))
        return matrix.shape, matrix.parts()


def dimension(name):
    return int(re.search(r"<(\d+)", name).group(1))


class SmallVector(Printer):
    def look(self):
        n = dimension(self.type.name)
        elements = self.value["elements_"] if self.address is None else numbers(memory(self.address, 8 * n), n)
        return count(n, "element"), named(elements[i] for i in range(n))


class SmallMatrix(Printer):
    def look(self):
        n = dimension(self.type.name)
        if self.address is None:
            elements = [float(self.value["elements_"][i]) for i in range(n * n)]
            raw = struct.pack(f"{order()}{n * n}d", *elements)
        else:
            raw = memory(self.address, 8 * n * n)
        matrix = Matrix(n, n, lambda j, i, k: raw[8 * (j * n + i):8 * (j * n + i + k)])
        return matrix.shape, matrix.parts()


class Reflection:
    def __init__(self, address):
        pivot, zero = at(address + 8, "i", "i")
        self.u = Array(address + REFLECTION_U)
        self.scale, = at(address + 56, "d")
        self.line = f"reflection of {count(self.u.size, 'element')}, pivot {pivot}, zeros from {zero} on" \
            if self.scale != 0.0 else f"the identity, of {count(self.u.size, 'element')}"
        self.parts = (("scale", gdb.Value(self.scale)), ("u", list_of(self.u.data, self.u.size)))


class ReflectionPrinter(Printer):
    def look(self):
        reflection = Reflection(self.address)
        return reflection.line, reflection.parts


class Qr(Printer):
    def look(self):
        full_rank, = at(self.address + 8, "?")
        r, = at(self.address + 16, "Q")
        n = dimension(self.type.name) if "TnLaTSmallMat" in self.type.name else None
        matrix = Matrix.dense_at(r) if n is None else Matrix.of_block(n, n, r)
        trafos = Array(self.address + QR_TRAFOS)
        reflections = [Reflection(*at(trafos.data + 8 * i, "Q")) for i in range(trafos.size)]
        verdict = "full rank" if full_rank else "not of full rank"
        return (f"{matrix.shape}, {verdict}, {count(trafos.size, 'reflection')}",
                [("R", matrix.table()), *((f"T({i})", self.text(t)) for i, t in enumerate(reflections))])

    @staticmethod
    def text(reflection):
        parts = (f"{name} = {part if isinstance(part, str) else part.format_string()}"
                 for name, part in reflection.parts)
        return f"{reflection.line} = {{{', '.join(parts)}}}"


class Cholesky(Printer):
    def look(self):
        factor_ok, n, matrix, rhs, factor, _, diagonal = at(self.address + 8, "?3x", "i", "Q", "Q", "Q", "Q", "Q")
        solution = Array(self.address + CHOLESKY_SOLUTION)
        state = "no A" if not matrix else "not factored yet" if not factor else \
            "positive definite" if factor_ok else "not positive definite, solved by rank"
        parts = []
        if matrix:
            parts.append(("A", Matrix.of_block(n, n, matrix).table()))
        if rhs:
            parts.append(("b", list_of(rhs, n)))
        if factor and factor_ok:
            parts.append(("L", Matrix(n, n, column_of_l(factor, diagonal, n)).table()))
        parts.append(("x", list_of(solution.data, solution.size)))
        return f"{n} x {n}, {state}{'' if rhs else ', no b'}", parts


def column_of_l(factor, diagonal, n):
    def column(j, i, k):
        below = memory(factor + 8 * (j * n + j + 1), 8 * (n - j - 1))
        return (bytes(8 * j) + memory(diagonal + 8 * j, 8) + below)[8 * i:8 * (i + k)]
    return column


class BandSolver(Printer):
    def look(self):
        unknowns, blocks, width, sides, work = at(self.address + 8, "i", "i", "i", "i", "Q")
        return (f"{count(unknowns, 'unknown')} in {count(blocks, 'block')}, bandwidth {width}, "
                f"{count(sides, 'right-hand side')}",
                [("work", Matrix.dense_at(work).table())] if work else [])


def text_at(address):
    text, = at(address, "Q")
    return gdb.Value(text).cast(gdb.lookup_type("char").pointer()).string()


class Result(Printer):
    def look(self):
        code, number, package = at(self.address, "i", "i", "Q")
        if package == 0:
            return "no condition", ()
        kind = dict(enumerate(("none", "information", "warning", "error"))).get(code, f"code {code}")
        return f'{kind} {number} of "{text_at(*at(package, "Q"))}"', ()


class Text(Printer):
    def look(self):
        return text_at(self.address), ()

    def display_hint(self):
        return "string"


class Journal(Printer):
    def look(self):
        stream = gdb.Value(*at(self.address, "Q")).cast(gdb.lookup_type("void").pointer())
        return f"journal to the stream {stream.format_string(symbols=True)}", ()


class Behaviour(Printer):
    def look(self):
        table = gdb.Value(*at(self.address, "Q")).cast(gdb.lookup_type("void").pointer())
        name = re.search(r"<vtable for (.*)\+\d+>", table.format_string(symbols=True))
        if name is None:
            raise gdb.error(f"its virtual table at {table}")
        return f"behaviour of a {name.group(1)}", ()


def printers():
    collection = gdb.printing.RegexpCollectionPrettyPrinter("TARNtnla")
    for name, printer in (
            ("TnArray<.*>", ArrayPrinter), ("TnString", Text), ("TnToken", Text), ("TnResult", Result),
            ("TnJournal", Journal), ("TnOperationBehaviour", Behaviour),
            ("TnLaDblMat", DenseMatrix), ("TnLaDblVec", DenseVector),
            ("TnLaTSmallMat<.*>", SmallMatrix), ("TnLaTSmallVec<.*>", SmallVector),
            ("TnLaHouseholder", ReflectionPrinter), ("TnLaTQRDecompo<.*>", Qr), ("TnLaCholesky", Cholesky),
            ("TnLaBlkBndSolver", BandSolver)):
        collection.add_printer(name.removesuffix("<.*>"), f"^{name}$", printer)
    return collection


gdb.printing.register_pretty_printer(gdb.current_objfile(), printers(), replace=True)
