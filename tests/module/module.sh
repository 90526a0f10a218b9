#!/bin/sh
# SPDX-License-Identifier: MIT

# What takes valgrind or libabigail to see about the modules, after a build of the preset dev: the binary
# interface is the promised one; allocations fail in every public function; where they do, and over a
# thousand loads and unloads, no block is lost and no byte is touched that should not be; and no result depends
# on a byte that nobody has written, which the digest would hand to its comparisons.
# usage: module.sh
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
build=$root/build/dev

sh "$here/abi.sh"
python3 -B "$here/tried.py" "$build/tests/module/tried" "$build"

# Two tests look at floating-point flags, of which valgrind keeps none.
flags=CholeskyMemory.TheFactorIsComputedOnceForAMatrix:CholeskyMemory.AFactorThatFailsIsTriedOnceForAMatrix
cat <<LIST | xargs -P 2 -L 1 "$here/valgrind.sh"
$build/tests/module/unload $build/libTARNtn.so.1 $build/libTARNtnla.so.1
$build/tests/digest/digest --percent 10 --expected $root/tests/digest/expected.txt
$build/tests/allocation_sizes_test
$build/tests/allocation_test
$build/tests/solver_allocation_test
$build/tests/block_band_exceptions_test
$build/tests/block_band_module_test
$build/tests/cholesky_memory_test --gtest_filter=-$flags
$build/tests/cholesky_life_test
$build/tests/eigenvector_basis_test
$build/tests/adapt_jet_limits_test
$build/tests/tnarray_test
LIST
