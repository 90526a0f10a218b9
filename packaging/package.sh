#!/bin/sh
# SPDX-License-Identifier: MIT

# Makes Debian's packages and a TGZ in build/packages, with the reference that is in build/docs/html, and tries all
# that a release offers:
#   lintian finds nothing that is wrong; the README's commands lead from the packages to a solved system (try.sh);
#   a parent project with flags of its own may take the library in, and all results keep their bits.
# usage: package.sh [--only]     the second form only makes them
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/.." && pwd)
build=$root/build/package
packages=$root/build/packages

say() { echo "== $*"; }
quietly() { "$@" >"$build.log" 2>&1 || { cat "$build.log"; exit 1; }; }

# The second configuration moves the folders, and nothing is compiled again.
make_packages() {
  rm -rf "$packages"
  for debian in OFF ON; do
    quietly cmake -S "$here" -B "$build" -G Ninja -DDEBIAN=$debian
    quietly cmake --build "$build"
    quietly cpack --config "$build/CPackConfig.cmake" -B "$packages"
  done
  rm -rf "$packages/_CPack_Packages"
  ls -l "$packages"
}

# as_part <compiler> <definition ...>: the library as a part of a parent project.
as_part() {
  cxx=$1; shift
  cmake "-DSOURCE=$root" "-DSCRATCH=$root/build/parent_$cxx" "-DCXX=$cxx" -DBUILD=ON "$@" \
    -P "$root/tests/install/subproject_test.cmake"
}

mkdir -p "$root/build"
make_packages
[ "${1-}" != --only ] || exit 0
say "lintian"
lintian --fail-on error,warning "$packages"/*.deb
say "from the packages to a solved system"
sh "$here/try.sh" "$packages"
say "a part of a parent project"
as_part g++ "-DOPTIONS=-DCMAKE_CXX_FLAGS=-O2 -ffast-math -Wextra -Wconversion -Weffc++"
as_part clang++ -DPACKED=ON \
  "-DOPTIONS=-DFETCH=ON;-DCMAKE_BUILD_TYPE=Debug;-DCMAKE_CXX_FLAGS=-Ofast -Weverything -Wno-c++98-compat"
say "the packages are as they should be"
