#!/usr/bin/env bash
# Looks for the marks that the hardening flags leave in what was built:
#   tests/hardening/check_flags.sh elf|pe READ-TOOL LIBRARY PROGRAM
# READ-TOOL is readelf or objdump of the system that the files are for. Ends with `N passed, N failed`.
set -euo pipefail
readonly usage='usage: tests/hardening/check_flags.sh elf|pe READ-TOOL LIBRARY PROGRAM'
readonly kind=${1:?$usage} reader=${2:?$usage} library=${3:?$usage} program=${4:?$usage}
# shellcheck source=tests/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/../checks.sh"
export LC_ALL=C

# Shows PATTERN FILE OPTION: what the read tool says of the file with this option has a line that fits.
Shows() { "$reader" "$3" "$2" | grep -E -- "$1"; }

NoExecutableStack() {
  local stack
  stack=$("$reader" -lW "$1" | grep GNU_STACK) && [[ $stack != *RWE* ]]
}

CheckElf() {
  local file
  for file in "$library" "$program"; do
    local name=${file##*/}
    Check "$name: relocations become read-only" Shows 'GNU_RELRO' "$file" -lW || true
    Check "$name: all symbols are bound when it is loaded" Shows '\(FLAGS(_1)?\).*NOW' "$file" -dW || true
    Check "$name: the stack is not executable" NoExecutableStack "$file" || true
    Check "$name: the stack is guarded" Shows '__stack_chk_fail' "$file" -sW || true
    Check "$name: can be loaded at any address" Shows 'Type: +DYN' "$file" -hW || true
  done
  Check "${program##*/}: is a position-independent executable" Shows 'FLAGS_1.*PIE' "$program" -dW || true
}

CheckPe() {
  local file mark
  for file in "$library" "$program"; do
    for mark in HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT; do
      Check "${file##*/}: $mark" Shows "$mark" "$file" -p || true
    done
    Check "${file##*/}: has relocations to be moved by" Shows '\.reloc' "$file" -h || true
  done
}

case $kind in
  elf) CheckElf ;;
  pe) CheckPe ;;
  *) printf '%s\n' "$usage" >&2; exit 2 ;;
esac
Summary
