#!/usr/bin/env bash
# Builds the fuzz targets and runs them, each from a committed corpus: tests/fuzz/run.sh FOLDER [SECONDS [TARGET ...]]
# What they learn stays in FOLDER/corpus, what breaks them in FOLDER/crashes. NORV_FUZZ_SEED makes a run in a new folder go
# the same way each time; without it each goes a way of its own. Ends with `N passed, N failed`.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
readonly here
mkdir -p "${1:?usage: tests/fuzz/run.sh WORK-FOLDER [SECONDS [TARGET ...]]}"
folder=$(cd "$1" && pwd)
readonly folder
readonly seconds=${2:-20}
readonly known=(block report listing machine-file machine-reports decode-binary decode-hex decode-dump encode)
targets=("${@:3}")
[[ ${#targets[@]} -gt 0 ]] || targets=("${known[@]}")
readonly targets
for target in "${targets[@]}"; do
  if [[ " ${known[*]} " != *" $target "* ]]; then
    printf 'fuzz: there is no target %s: expected one of %s\n' "$target" "${known[*]}" >&2
    exit 2
  fi
done
if [[ ! $seconds =~ ^[1-9][0-9]*$ ]]; then
  printf 'fuzz: %s is no number of seconds\n' "$seconds" >&2
  exit 2
fi
# shellcheck source=tests/checks.sh
. "$here/../checks.sh"

Build() {
  cmake -S "$here/../.." -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_CXX_FLAGS="-O1 -gline-tables-only" -DNORV_BATTERY_SANITIZE=address,undefined,fuzzer-no-link \
    -DCMAKE_UNITY_BUILD=ON -DNORV_BATTERY_BUILD_FUZZERS=ON &&
    cmake --build "$folder/build" --target "${targets[@]/#/norv-battery-fuzz-}"
}

# The folders that a target starts from: what it has learnt, its own inputs, and those that lie elsewhere already, such as
# the sample machines and their blocks.
Corpora() {
  local target=$1 own=$here/corpus/$1 blocks=$folder/blocks
  mkdir -p "$folder/corpus/$target"
  printf '%s\n' "$folder/corpus/$target"
  [[ ! -d $own ]] || printf '%s\n' "$own"
  case $target in
    listing) printf '%s\n' "$here/../fixtures/power-supply" ;;
    machine-file) printf '%s\n' "$here/../../simulator/machines" ;;
    block)
      mkdir -p "$blocks"
      split --bytes=128 "$here/corpus/decode-binary/all-and-a-short-one" "$blocks/"
      printf '%s\n' "$blocks"
      ;;
  esac
}

# One target, with what it says in a log.
Fuzz() {
  local target=$1 muted=1 corpora
  [[ $target == encode || $target == machine-reports ]] && muted=3  # commands complain about nearly every input
  mkdir -p "$folder/crashes"
  mapfile -t corpora < <(Corpora "$target")
  "$folder/build/tests/fuzz/norv-battery-fuzz-$target" -seed="${NORV_FUZZ_SEED:-0}" -max_total_time="$seconds" -timeout=10 \
    -rss_limit_mb=2048 -max_len=8192 -close_fd_mask="$muted" -dict="$here/dictionaries/$target.dict" -print_final_stats=1 \
    -artifact_prefix="$folder/crashes/$target-" "${corpora[@]}" >"$folder/$target.log" 2>&1
}

# All targets, as many at a time as there are processors. Each leaves its status beside its log.
FuzzAll() {
  local target
  for target in "${targets[@]}"; do
    while [[ $(jobs -rp | wc -l) -ge $(nproc) ]]; do
      wait -n || true
    done
    { Fuzz "$target" && status=0 || status=$?; printf '%d' "$status" >"$folder/$target.status"; } &
  done
  wait
}

# The inputs of the crashes are named at the end of the target's output.
Outcome() {
  local target=$1 status
  status=$(<"$folder/$target.status")
  sed -n 's/^stat::number_of_executed_units: */executed inputs: /p' "$folder/$target.log"
  [[ $status == 0 ]] || tail -n 60 "$folder/$target.log"
  return "$status"
}

if Check "the fuzz targets build" Build; then
  FuzzAll
  for target in "${targets[@]}"; do
    Check "$target: $seconds seconds of inputs without a wrong answer" Outcome "$target" || true
  done
fi
Summary
