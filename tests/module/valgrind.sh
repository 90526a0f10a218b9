#!/bin/sh
# SPDX-License-Identifier: MIT

# Runs one program under valgrind, and prints what it says only if there is something to say.  The
# tests have an operator new of their own, which valgrind shall not replace (somalloc).
# usage: valgrind.sh <program> [arguments ...]
name=$(basename "$1")
log=$(mktemp)
if valgrind -q --error-exitcode=1 --leak-check=full --show-leak-kinds=definite,indirect,possible --keep-debuginfo=yes \
  --soname-synonyms=somalloc=nouserintercepts "$@" >"$log" 2>&1; then
  echo "valgrind: $name: nothing"
else
  cat "$log"
  echo "valgrind: $name: FAILED"
  rm "$log"
  exit 255  # ends xargs
fi
rm "$log"
