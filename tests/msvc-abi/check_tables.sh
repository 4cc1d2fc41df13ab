#!/usr/bin/env bash
# Compares the virtual tables that the Microsoft C++ ABI gives the exported classes with tables.txt beside this script:
#   check_tables.sh CLANG            fails and shows what differs
#   check_tables.sh CLANG --accept   writes the tables as they are now, for a change that is meant
# Only the order of the operations counts, which follows from the public headers alone.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
clang=${1:?usage: check_tables.sh CLANG [--accept]}
root=$here/../..

tables=$("$clang" --target=x86_64-pc-windows-msvc -std=c++17 -nostdinc -I "$here/stand-in" -I "$root/include" \
  -Xclang -fdump-vtable-layouts -S -emit-llvm -o /dev/null "$here/tables.cpp" |
  awk '/^VFTable indices/ { print; inside = 1; next } /^$/ { inside = 0 } inside { print }')
if [[ ${2:-} == --accept ]]; then
  printf '%s\n' "$tables" >"$here/tables.txt"
  exit
fi
diff -u "$here/tables.txt" <(printf '%s\n' "$tables")
