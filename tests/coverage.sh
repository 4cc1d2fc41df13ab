#!/usr/bin/env bash
# Measures how much of src/ the unit tests reach: tests/coverage.sh WORK-FOLDER
# Fails below 98 % of the lines or 90 % of the branches. Branches that only an exception takes are left out: the compiler
# makes one of nearly every call, and what the failure of each allocation and each outside operation does is tested by
# making them fail in turn, which this count cannot see for the calls that cannot fail.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
readonly here
root=$(cd "$here/.." && pwd)
readonly root
folder=${1:?usage: tests/coverage.sh WORK-FOLDER}
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)
readonly folder
readonly programs=(norv-battery-unit-tests norv-battery-memory-tests norv-battery-c-interface-tests
                   norv-battery-c-interface-allocation-tests norv-battery-hardening-tests norv-battery-threads-tests)

cmake -S "$root" -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_COMPILER=g++ \
  -DCMAKE_CXX_FLAGS="-O0 -g --coverage -fprofile-update=atomic" >"$folder/configure.log"
cmake --build "$folder" --target "${programs[@]}" >"$folder/build.log" || { tail -n 40 "$folder/build.log"; exit 1; }
find "$folder" -name '*.gcda' -delete
for program in "${programs[@]}"; do
  "$(find "$folder/tests" -name "$program" -type f)" --gtest_brief=1 >"$folder/$program.log" ||
    { tail -n 40 "$folder/$program.log"; exit 1; }
done
gcovr --root "$root" --filter "$root/src/" --exclude-throw-branches --exclude-unreachable-branches \
  --gcov-ignore-parse-errors --print-summary --html-details "$folder/coverage.html" --fail-under-line 98 \
  --fail-under-branch 90 "$folder"
