# SPDX-License-Identifier: MIT

# The kernel sets: one source, compiled once for each instruction set.

include(CheckCXXSourceCompiles)
include(CMakePushCheckState)

# tarn_kernel_set(<set> <lanes> [options...]): the object library tarntnla_kernels_<set>.
#
# Nobody asks a kernel for errno, and a square root that must not set it is one instruction, also of a vector:
# bench/eigenvectors, 10 to 17% for n = 16 to 100.  GCC would keep a second copy of strided loops for vectors
# whose entries are 1 apart, and split others at their ends: 25 KB, and not faster.
function(tarn_kernel_set set lanes)
  add_library(tarntnla_kernels_${set} OBJECT ${TNLA_SET_SOURCES})
  tarn_compiles_as_we_do(tarntnla_kernels_${set})
  target_compile_definitions(tarntnla_kernels_${set} PRIVATE TNLA_SET=${set} TNLA_LANES=${lanes})
  target_compile_options(tarntnla_kernels_${set} PRIVATE -fno-math-errno
    "$<$<CXX_COMPILER_ID:GNU>:-fno-version-loops-for-strides;-fno-split-loops;-fno-unswitch-loops;-fno-peel-loops>"
    ${ARGN})
  # GCC aligns the stack of Windows to 16 bytes and takes vectors of 32 bytes on it for aligned (its bug 54412);
  # Debian's GCC has been mended, others crash there.  The moves without alignment are as fast where there is one.
  if(WIN32 AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(tarntnla_kernels_${set} PRIVATE -Wa,-muse-unaligned-vector-move)
  endif()
endfunction()

set(TNLA_SET_SOURCES
    src/kernels/band.cpp src/kernels/band_fold.cpp src/kernels/cholesky.cpp src/kernels/elementwise.cpp
    src/kernels/jacobi.cpp src/kernels/jacobi_turns.cpp src/kernels/jacobi_wavefront.cpp
    src/kernels/matrix_vector.cpp src/kernels/product.cpp src/kernels/product_direct.cpp
    src/kernels/product_packed.cpp src/kernels/qr.cpp src/kernels/rank_revealing.cpp
    src/kernels/rank_revealing_solve.cpp src/kernels/reflection.cpp src/kernels/reflection_chain.cpp
    src/kernels/set.cpp src/kernels/small_qr.cpp src/kernels/triangular.cpp)

# This one lays out its vectors by itself.  What a compiler adds goes through memory, and it costs: 1.25 of the
# time at order 6.
set_source_files_properties(src/kernels/small_qr.cpp PROPERTIES
  COMPILE_OPTIONS "-fno-tree-vectorize;-fno-tree-slp-vectorize")

# What runs anywhere: two lanes are what SSE2, which every x86-64 has, and the vectors of most others hold.
tarn_kernel_set(portable 2)
add_library(tarntnla_kernels INTERFACE)
target_sources(tarntnla_kernels INTERFACE
  $<TARGET_OBJECTS:tarntnla_kernels_portable> ${PROJECT_SOURCE_DIR}/src/kernels/dispatch.cpp)

option(TARNTNLA_WITH_AVX2 "Build the kernels for AVX2 too" ON)
# The option alone says nothing: Clang 14 takes it for any processor.
cmake_push_check_state()
string(APPEND CMAKE_REQUIRED_FLAGS " -mavx2 -w")
check_cxx_source_compiles("
  #ifndef __AVX2__
  #error
  #endif
  int main() { return __builtin_cpu_supports(\"avx2\"); }" TARNTNLA_COMPILES_AVX2)
cmake_pop_check_state()
if(TARNTNLA_WITH_AVX2 AND TARNTNLA_COMPILES_AVX2)
  tarn_kernel_set(avx2 4 -mavx2)
  target_sources(tarntnla_kernels INTERFACE $<TARGET_OBJECTS:tarntnla_kernels_avx2>)
  target_compile_definitions(tarntnla_kernels INTERFACE TNLA_WITH_AVX2)
  # Beside it the portable set serves the processors before 2013 alone, and size counts for more: 45 KB.
  target_compile_options(tarntnla_kernels_portable PRIVATE $<$<CONFIG:Release>:-Os>)
endif()
