// SPDX-License-Identifier: MIT

#include "kernel_set.h"
#include "simd.h"

// One kernel set, from the sources that are compiled beside this one.
namespace tnla_kernels::TNLA_SET {

ElementwiseKernels elementwise_kernels();
ProductKernels product_kernels();
ReflectionKernels reflection_kernels();
QrKernels qr_kernels();
SmallQrKernels small_qr_kernels();
RankRevealingKernels rank_revealing_kernels();
TriangularKernels triangular_kernels();
CholeskyKernels cholesky_kernels();
JacobiKernels jacobi_kernels();
BandKernels band_kernels();

KernelSet kernel_set() {
  return {
      .elementwise = elementwise_kernels(),
      .product = product_kernels(),
      .reflection = reflection_kernels(),
      .qr = qr_kernels(),
      .small_qr = small_qr_kernels(),
      .rank_revealing = rank_revealing_kernels(),
      .triangular = triangular_kernels(),
      .cholesky = cholesky_kernels(),
      .jacobi = jacobi_kernels(),
      .band = band_kernels(),
  };
}

}  // namespace tnla_kernels::TNLA_SET
