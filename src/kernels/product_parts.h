// SPDX-License-Identifier: MIT

#pragma once

#include "product.h"
#include "simd.h"

// The ways to form C = A B that product.cpp chooses from.  All give the bits that product.h states.
namespace tnla_kernels::TNLA_SET {

// Column-major, no leading dimension but m for A and y: every column of A is read once.
void matrix_vector(Index m, Index n, const double* a, const double* x, double* y);

// Column-major, straight from the operands: for a small A.
void direct_product(Index m, Index k, Index n, const double* a, Index lda, const double* b, Index ldb,
                    double* c, Index ldc);

// m x n elements from one place to another.
void copy_elements(Index m, Index n, const double* from, Steps sf, double* to, Steps st);

// Any steps such that no two elements of C share a place; from blocks of A and B that are copied into
// 70 KiB on the stack.
void packed_product(Index m, Index k, Index n, const double* a, Steps sa, const double* b, Steps sb,
                    double* c, Steps sc);

}  // namespace tnla_kernels::TNLA_SET
