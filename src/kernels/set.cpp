#include "kernel_set.h"
#include "simd.h"

// One kernel set, from the sources that are compiled beside this one.
namespace tnla_kernels::TNLA_SET {

ElementwiseKernels elementwise_kernels();
ProductKernels product_kernels();
ReflectionKernels reflection_kernels();
TriangularKernels triangular_kernels();
CholeskyKernels cholesky_kernels();
JacobiKernels jacobi_kernels();
SmallQrKernels small_qr_kernels();

KernelSet kernel_set() {
  return {elementwise_kernels(), product_kernels(), reflection_kernels(), triangular_kernels(),
          cholesky_kernels(),    jacobi_kernels(),  small_qr_kernels()};
}

}  // namespace tnla_kernels::TNLA_SET
