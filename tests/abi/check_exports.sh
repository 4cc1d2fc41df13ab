#!/usr/bin/env bash
# Compares what a build of the shared library exports with exports.txt beside this script:
#   check_exports.sh NM LIBRARY           fails and says what is new and what is gone
#   check_exports.sh NM LIBRARY --accept  writes what is exported now to exports.txt, for a change that is meant
# The list has demangled names without addresses and kinds, so that it holds for every compiler and build type: both
# constructors of a class are one line, and a table that one compiler makes weak is the same line.
set -euo pipefail
export LC_ALL=C

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
nm=${1:?usage: check_exports.sh NM LIBRARY [--accept]}
library=${2:?usage: check_exports.sh NM LIBRARY [--accept]}
golden=$here/exports.txt

exported=$("$nm" --dynamic --defined-only --demangle --format=posix "$library" |
  sed -E 's/ [A-Za-z] [0-9a-f]+( [0-9a-f]+)?$//; s/\[abi:[a-z0-9]+\]//g; s/std::__cxx11::/std::/g' | sort -u)

if [[ ${3:-} == --accept ]]; then
  printf '%s\n' "$exported" >"$golden"
  printf 'written: %s\n' "$golden"
  exit
fi

status=0
# Whatever the list says: only the interface's own classes, their tables and its plain functions may be visible.
own='^((vtable|typeinfo|typeinfo name) for )?norv::(shared::(battery|error|norvbios|wmi)|platform)::[A-Z]'
foreign=$(grep -vE "$own|^(norvSharedInitializeLogger|norv_battery_[a-z_]+)\$" <<<"$exported" || true)
if [[ -n $foreign ]]; then
  printf 'The library exports names that are not its own interface:\n%s\n' "$foreign"
  status=1
fi
gone=$(comm -13 <(printf '%s\n' "$exported") "$golden")
new=$(comm -23 <(printf '%s\n' "$exported") "$golden")
if [[ -n $gone ]]; then
  printf 'No longer exported, so that existing hosts fail to load:\n%s\n' "$gone"
  status=1
fi
if [[ -n $new ]]; then
  printf 'Newly exported:\n%s\n' "$new"
  status=1
fi
if [[ -n $gone$new ]]; then
  printf 'If this is meant, accept it with:\n  %s %s %s --accept\n' "$0" "$nm" "$library"
fi
exit "$status"
