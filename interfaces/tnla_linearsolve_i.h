// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <type_traits>

#include "tnla_export.h"
#include "tnla_matrix_vector_i.h"

// Linear systems A X = B in the least-squares sense, and inverses.
//
// A is m x n, B is m x p, X becomes n x p: one solution for each column of B.  M is TnLaDblMat or
// TnLaTSmallMat<N, N, double>, N = 1 to 12.  X may be A; X must not be B.
//
//  (1) What counts as zero or singular is absolute, never relative to the size of A.  A system whose
//      columns are, or become while they are eliminated, shorter than about 1e-10 is outside the usable
//      range: the answer may be true and X wrong.  Scale such a system first; a power of two does it
//      without a rounding error.
//  (2) A false result or a rank below n is an answer, not an error.
//  (3) std::bad_alloc loses no memory.  X is then as it was, resized or solved (A with it, if X is A), and
//      *rank and *null_space may have been written.
//  (4) The default solve of a square system of order 12 or less works on the stack: it allocates the block
//      of a dense X that is empty, and nothing if X has its shape already.

// M*, but not deduced from, so that nullptr can be passed as it stands.  Only a matrix type has it.
template <class M>
struct TnLaTOptional {};
template <>
struct TnLaTOptional<TnLaDblMat> {
  using Pointer = TnLaDblMat*;  // the pointer itself
};
template <std::size_t N>
struct TnLaTOptional<TnLaTSmallMat<N, N, double>> {
  using Pointer = TnLaTSmallMat<N, N, double>*;  // the pointer itself
};

// The rank-revealing solve: X = the least-squares solution of minimal length.
//
// Columns are interchanged, and the rank is the number of diagonal entries of R before the first one of
// magnitude below `tol`.  Where given, *rank receives it and *null_space an orthonormal basis of the null
// space of A in its columns, n x (n - rank), or 0 x 0; pass an empty matrix there.
//
// Asserted, in one check: A and B have the same number of rows, tol > 0, neither is empty.  Otherwise X
// becomes 0 x 0 and *rank -1; *null_space is left alone.
//
// A small matrix keeps its shape: its `resize` asserts where another one is asked for, and *null_space
// receives the basis in its first columns.  Pass a zero matrix there: whatever it holds is turned as the
// basis is, in every column.
//
// Source: Lawson and Hanson, Solving Least Squares Problems, chapter 14 (HFTI), with an absolute
// tolerance.
template <class M>
TNLA_API void tnla_linearsolve(  // (A, B, X, 0): write nullptr, or a tolerance above 0
    const M& A, const M& B, M& X, double tol, int* rank = nullptr,
    typename TnLaTOptional<M>::Pointer null_space = nullptr);

// The default solve: true if the system has full rank.
//
// m >= n: by TnLaTQRDecompo<M>.  If the verdict is false, X is only resized to n x p, keeping what
// overlaps.  *null_space, where given, becomes 0 x 0 in any case.
//
// m < n: by the rank-revealing solve with the tolerance 1e-13, and true if the rank is m.  X is the
// solution of minimal length also where the result is false, unless an assertion of that solve has failed.
template <class M>
TNLA_API bool tnla_linearsolve(const M& A, const M& B, M& X,
                               typename TnLaTOptional<M>::Pointer null_space = nullptr);

// The same, without a template.
TNLA_API bool tnla_linearsolve(const TnLaDblMat& A, const TnLaDblMat& B, TnLaDblMat& X,
                               TnLaDblMat* null_space = nullptr);

// The default solve once more, for nullptr.  A literal 0, which could be the tolerance or the pointer,
// finds these as good as the others, and is refused as ambiguous.
template <class M, std::enable_if_t<TnLaTIsMatrix<M>, int> = 0>
bool tnla_linearsolve(  // (A, B, X, 0): write nullptr, or a tolerance above 0
    const M& A, const M& B, M& X, std::nullptr_t) {
  return tnla_linearsolve<M>(A, B, X);
}
inline bool tnla_linearsolve(  // (A, B, X, 0): write nullptr, or a tolerance above 0
    const TnLaDblMat& A, const TnLaDblMat& B, TnLaDblMat& X, std::nullptr_t) {
  return tnla_linearsolve(A, B, X);
}

// Refused: anything but matrices, above all a vector b, of which TnLaDblMat(b, false) makes a matrix.
template <class M>
inline constexpr bool TnLaTSolvable =
    TnLaTIsMatrix<M> || std::is_convertible_v<const M&, const TnLaDblMat&>;
template <class A, class B, class X, class... R,
          std::enable_if_t<!(TnLaTSolvable<A> && TnLaTSolvable<B> && TnLaTSolvable<X>), int> = 0>
void tnla_linearsolve(const A&, const B&, X&, R...) = delete;  // pass matrices, b as TnLaDblMat(b, false)

// Ainv = the n x m pseudo-inverse of A, by the rank-revealing solve of A Ainv = I.  An empty A is
// asserted and gives a 0 x 0 matrix; *rank is then left alone.
TNLA_API void tnla_inverse(const TnLaDblMat& A, TnLaDblMat& Ainv, double tol, int* rank = nullptr);

// The default solve of A Ainv = I; true if A has full rank.
TNLA_API bool tnla_inverse(const TnLaDblMat& A, TnLaDblMat& Ainv);
