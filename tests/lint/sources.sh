#!/usr/bin/env bash
# Prints the project's C++ sources, one path a line, relative to its root; with folders as arguments only those in them.
# Untracked sources count too: what is about to be committed is what should be checked.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
[[ $# -gt 0 ]] || set -- include base firmware src platform json simulator tools tests bench cmake
for folder in "$@"; do
  [[ -d $folder ]] || continue
  find "$folder" -type f \( -name '*.h' -o -name '*.cpp' -o -name '*.c' \)
done | LC_ALL=C sort
