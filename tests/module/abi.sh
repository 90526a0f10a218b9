#!/bin/sh
# SPDX-License-Identifier: MIT

# Compares the binary interface of both modules (types, layouts, virtual tables, signatures) with the one that was
# promised, abi/<module>.abi.xz.  What libabigail reads off a module depends on the compiler, so it is always
# GCC 12, without optimisation.  What is only added is for TARNtn*.exports to notice.
# usage: abi.sh [--write]      the second form writes the promise anew, for a new version that is to hold it
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
build=$root/build/abi

mkdir -p "$root/build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=g++-12 -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS="-ffile-prefix-map=$root=." -DTARNTNLA_BUILD_TESTS=OFF -DTARNTNLA_WITH_AVX2=OFF >"$build.log"
cmake --build "$build" >>"$build.log" || { cat "$build.log"; exit 1; }

failed=0
for module in TARNtn TARNtnla; do
  promise=$here/abi/$module.abi.xz
  if [ "${1-}" = --write ]; then
    abidw --headers-dir "$root/core" --headers-dir "$root/interfaces" --drop-private-types --no-show-locs \
      --no-corpus-path --no-comp-dir-path --no-elf-needed "$build/lib$module.so.1" | xz -9 >"$promise"
    continue
  fi
  xz -dc "$promise" >"$build/$module.abi"
  abidiff --no-added-syms "$build/$module.abi" "$build/lib$module.so.1" || failed=1
done
[ $failed = 0 ] || exit 1
[ "${1-}" = --write ] || echo "the binary interface is as it was promised"
