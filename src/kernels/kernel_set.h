// SPDX-License-Identifier: MIT

#pragma once

#include <span>

#include "band.h"
#include "cholesky.h"
#include "elementwise.h"
#include "jacobi.h"
#include "product.h"
#include "qr.h"
#include "rank_revealing.h"
#include "reflection.h"
#include "small_qr.h"
#include "triangular.h"

// The kernels that exist once for every instruction set, from the same source.  All sets give the same
// bits.
namespace tnla_kernels {

struct KernelSet {
  ElementwiseKernels elementwise;
  ProductKernels product;
  ReflectionKernels reflection;
  QrKernels qr;
  SmallQrKernels small_qr;
  RankRevealingKernels rank_revealing;
  TriangularKernels triangular;
  CholeskyKernels cholesky;
  JacobiKernels jacobi;
  BandKernels band;
};

struct KernelSetChoice {
  const char* name;
  bool (*runs_here)();
  KernelSet (*set)();
};

// All that the module holds, the best first; the last one runs on any processor.
std::span<const KernelSetChoice> kernel_sets();

// The first one that runs on this processor, chosen when the module is loaded.
extern const KernelSet best;

}  // namespace tnla_kernels
