#!/bin/sh
# SPDX-License-Identifier: MIT

# Tries the packages of a folder as a stranger would: the program and the commands of the README, then an example from
# the documentation, by CMake; and the TGZ, unpacked somewhere, by CMake and pkg-config.
# As root this happens in a copy of the machine that is thrown away, where the packages are really installed and
# removed.  Where that is not allowed they are unpacked into an empty folder, and the commands after the first one run.
# usage: try.sh <folder>
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
packages=$(cd "$1" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

stranger=$scratch/stranger
mkdir "$stranger"
cp "$packages"/*.deb "$stranger"
sed -n '/^```cpp$/,/^```$/p' "$root/README.md" | sed '/^```/d' >"$stranger/solve.cpp"
sed -n '/^    sudo apt install/,/^$/s/^    //p' "$root/README.md" >"$stranger/commands"
[ "$(wc -l <"$stranger/commands")" = 3 ] || { echo "where are the three commands of the README?" >&2; exit 1; }

cat >"$stranger/solves" <<'END'
cd /stranger
set -eu
sudo() { "$@"; }
echo 'APT::Get::Assume-Yes "true"; APT::Install-Recommends "false";' >/etc/apt/apt.conf.d/99stranger
begin=$(date +%s)
. ./commands >log 2>&1 || { cat log; exit 1; }
seconds=$(($(date +%s) - begin))
tail -1 log
tail -1 log | grep -qx 'y = -0.033 + 1.050 x'
times >worked  # of the processor; on a busy machine the clock says nothing
worked=$(sed -n '2s/[ms]/ /gp' worked | awk '{ print $1 * 60 + $2 + $3 * 60 + $4 }')
echo "installed, built and solved in $seconds s, of which the processor worked $worked s"
[ "${worked%.*}" -lt 60 ]
gdb -nx -batch -ex 'break tnla_linearsolve' -ex run -ex 'info pretty-printer' ./solve >log 2>&1
grep -qx ' *TnLaDblMat' log || { cat log; exit 1; }
echo "gdb has the library's types shown"
ldd solve | grep -c '=> /lib.*/libTARN\|=> /usr/lib.*/libTARN' | grep -qx 2

(apt install ./libtarntnla-doc_*.deb
cmake -S /usr/share/doc/libtarntnla-doc/examples -B examples -G Ninja
cmake --build examples --target linear_regression
cd examples && linear_regression/linear_regression) >log 2>&1 || { cat log; exit 1; }
echo "an example of the documentation builds, by CMake, and runs"

apt purge 'libtarntnla*' >log 2>&1 || { cat log; exit 1; }
left=$(find /usr /etc /var/lib -xdev -iname '*tarn*')
[ -z "$left" ] || { echo "left behind: $left"; exit 1; }
! ./solve 2>/dev/null
echo "removed without a trace"
END

in_a_copy() {
  unshare --mount sh -eu -c '
    mount -t tmpfs tmpfs "$1/copy"
    cd "$1/copy" && mkdir upper work all
    mount -t overlay overlay -o "lowerdir=/,upperdir=upper,workdir=work" all
    mount --rbind /dev all/dev && mount -t proc proc all/proc
    cp -L /etc/resolv.conf all/etc
    cp -r "$1/stranger" all
    [ $# = 1 ] || exec chroot all sh /stranger/solves' sh "$@"
}

mkdir "$scratch/copy"
if in_a_copy "$scratch" 2>"$scratch/log"; then
  in_a_copy "$scratch" run
else
  echo "unpacked alone; neither installed, timed, shown by gdb nor removed: $(tail -1 "$scratch/log")"
  for package in "$stranger"/*.deb; do dpkg-deb -x "$package" "$scratch/unpacked"; done
  pc=$(find "$scratch/unpacked" -name pkgconfig)
  (cd "$stranger" && sed 1d commands >rest && PKG_CONFIG_PATH=$pc LD_LIBRARY_PATH=${pc%/*} sh -eu ./rest) |
    grep -x 'y = -0.033 + 1.050 x'
fi

mkdir "$scratch/moved"
tar -xzf "$packages"/TARNtnla-*.tar.gz -C "$scratch/moved" --strip-components 1
export PKG_CONFIG_PATH="$scratch/moved/lib/pkgconfig"
(cmake -S "$root/tests/client" -B "$scratch/client" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/moved"
cmake --build "$scratch/client" --target by_package by_pkg_config lean_by_package lean_by_pkg_config
ctest --test-dir "$scratch/client" -R '_package$|_pkg_config$' --no-tests=error --output-on-failure) >"$scratch/log" 2>&1 || {
  cat "$scratch/log"; exit 1; }
echo "the TGZ is found where it is unpacked, by CMake and by pkg-config"
