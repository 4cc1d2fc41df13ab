#!/usr/bin/env bash
# Builds the library with the thread sanitizer and runs its collections in several threads: tests/threads/run.sh FOLDER
# Nothing is suppressed. Ends with `N passed, N failed`.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
readonly here
readonly folder=${1:?usage: tests/threads/run.sh WORK-FOLDER}
# shellcheck source=tests/checks.sh
. "$here/../checks.sh"

Build() {
  cmake -S "$here/../.." -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_CXX_FLAGS="-O1 -g" -DNORV_BATTERY_SANITIZE=thread -DNORV_BATTERY_BUILD_TOOL=OFF \
    -DCMAKE_UNITY_BUILD=ON &&
    cmake --build "$folder" --target norv-battery-threads-tests
}

# Each in a process of its own, so that the logger of one is not the other's.
Run() { TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" "$folder/tests/threads/norv-battery-threads-tests" --gtest_filter="$1"; }

if Check "the library builds with the thread sanitizer" Build; then
  Check "collections in two threads, without a logger" Run "Threads.*" || true
  Check "collections in two threads, with a logger" Run "ThreadsWithLogger.*" || true
fi
Summary
