#!/usr/bin/env bash
# Builds and installs the library as anyone would, then builds and runs hosts against what was installed:
#   tests/consumer/run.sh WORK-FOLDER [BUILD-FOLDER]
# once for each compiler and build type, or only with what BUILD-FOLDER, an optimised build by g++, installs. Ends with
# `N passed, N failed`.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
readonly here
root=$(cd "$here/../.." && pwd)
readonly root
mkdir -p "${1:?usage: tests/consumer/run.sh WORK-FOLDER}"
work=$(cd "$1" && pwd)
readonly work
[[ $# -lt 2 ]] || given=$(cd "$2" && pwd)
readonly given=${given:-}
# shellcheck source=tests/checks.sh
. "$here/../checks.sh"

jobs=$(nproc)
readonly jobs
readonly plogPrefix=$root/.deps/usr

# InstallLibrary COMPILER BUILD-TYPE SIMULATOR: into $work/COMPILER-BUILD-TYPE/prefix, emptied first so that no file of an
# earlier version helps out.
InstallLibrary() {
  local folder=$work/$1-$2
  rm -rf "$folder/prefix"
  CXX=$1 cmake -S "$root" -B "$folder/library" -DCMAKE_BUILD_TYPE="$2" -DNORV_BATTERY_BUILD_TESTS=OFF \
    -DNORV_BATTERY_BUILD_TOOL="$3" -DNORV_BATTERY_BUILD_SIMULATOR="$3" &&
    cmake --build "$folder/library" -j "$jobs" &&
    cmake --install "$folder/library" --prefix "$folder/prefix"
}

# BuildHosts COMPILER BUILD-TYPE SIMULATOR
BuildHosts() {
  local folder=$work/$1-$2
  rm -rf "$folder/host"
  CXX=$1 cmake -S "$here" -B "$folder/host" -DCMAKE_BUILD_TYPE="$2" -DCMAKE_PREFIX_PATH="$folder/prefix;$plogPrefix" \
    -DNORV_BATTERY_CONSUMER_SIMULATOR="$3" &&
    cmake --build "$folder/host" -j "$jobs"
}

# A host may be built by a moved tree, with no more than what pkg-config tells.
PkgConfigHost() {
  local prefix=$1 moved=$work/moved flags
  rm -rf "$moved" && cp -a "$prefix" "$moved" || return
  flags=$(PKG_CONFIG_PATH=$(dirname "$(find "$moved" -name norv-battery-info.pc)") \
    pkg-config --cflags --libs norv-battery-info) || return
  if [[ $flags == *"$prefix"* ]]; then
    printf 'the flags still name the folder that the tree was installed to: %s\n' "$flags"
    return 1
  fi
  # shellcheck disable=SC2086  # the flags are words
  g++ -std=c++17 -Wall -Wextra -pedantic -Werror -rdynamic -isystem "$plogPrefix/include" "$here/host.cpp" $flags \
    -o "$work/pkg-config-host" || return
  LD_LIBRARY_PATH=$(LibraryFolder "$moved") "$work/pkg-config-host" record-fields
}

LibraryFolder() { dirname "$(find "$1" -name 'libnorv-battery-info.so' | head -n 1)"; }

# One public header alone, read by a compiler that finds nothing but the installed tree and the standard library.
HeaderAlone() {
  printf '#include <%s>\n' "$3" |
    "$1" -std=c++17 -pedantic -Wall -Wextra -Werror -fsyntax-only -I "$2/include" -x c++ -
}

HeadersAlone() {
  local compiler=$1 prefix=$2 header status=0
  while read -r header; do
    HeaderAlone "$compiler" "$prefix" "$header" || status=1
  done < <(cd "$prefix/include" && find . -name '*.h' | sed 's|^\./||' | sort)
  [[ $status == 0 && -e $prefix/include/battery/NorvBatteries.h ]]
}

RunHosts() {
  local name=$1 folder=$work/$1 simulator=$2 case
  for case in $("$folder/host/host"); do
    Check "$name: $case" "$folder/host/host" "$case" || true
  done
  Check "$name: unloads-cleanly" "$folder/host/loader" "$(LibraryFolder "$folder/prefix")/libnorv-battery-info.so" || true
  if [[ $simulator == ON ]]; then
    Check "$name: reads a simulated machine" "$folder/host/simulated" || true
    Check "$name: the installed tool finds the library beside it" InstalledTool "$folder/prefix" || true
  fi
}

InstalledTool() { env -u LD_LIBRARY_PATH "$1/bin/norv-battery" report --machine two-batteries; }

InstallGiven() {
  rm -rf "$work/g++-Release/prefix"
  cmake --install "$given" --prefix "$work/g++-Release/prefix"
}

# Try INSTALL COMPILER BUILD-TYPE SIMULATOR: with the library that INSTALL, given the other three, installs.
Try() {
  local install=$1 name=$2-$3
  shift
  Check "$name: the library builds and installs" "$install" "$@" || return 0
  Check "$name: each public header stands alone" HeadersAlone "$1" "$work/$name/prefix" || true
  Check "$name: hosts build through find_package" BuildHosts "$@" || return 0
  RunHosts "$name" "$3"
}

if [[ -n $given ]]; then
  Try InstallGiven g++ Release ON
else
  Try InstallLibrary g++ Release ON
  Try InstallLibrary g++ Debug OFF
  Try InstallLibrary clang++ Release OFF
  Try InstallLibrary clang++ Debug OFF
fi
if [[ -d $work/g++-Release/prefix ]]; then
  Check "g++-Release: a host builds through pkg-config from a moved tree" PkgConfigHost "$work/g++-Release/prefix" || true
fi
Summary
