#!/usr/bin/env bash
# Looks for leaked memory and bad accesses in a full report of every sample machine: tests/leaks.sh NORV-BATTERY
set -euo pipefail
tool=${1:?usage: tests/leaks.sh NORV-BATTERY}
# shellcheck source=tests/checks.sh
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

# 0, 1, 3 and 4 are about the batteries; valgrind answers 99 when it found something, and 2 is a
# report that was not made.
Report() {
  local status=0
  valgrind --quiet --leak-check=full --errors-for-leak-kinds=definite,indirect,possible --error-exitcode=99 \
    "$tool" report --cell-swell --test --machine "$1" || status=$?
  [[ $status == 0 || $status == 1 || $status == 3 || $status == 4 ]]
}

SampleNames() { "$tool" machines | sed -nE 's/^ *([a-z0-9]+(-[a-z0-9]+)*)( .*|$)/\1/p'; }

samples=$(SampleNames) || samples=
Check "the tool lists its sample machines" test -n "$samples" || true
for sample in $samples; do
  Check "no leak in a full report of $sample" Report "$sample" || true
done
Summary
