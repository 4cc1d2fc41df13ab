#!/usr/bin/env bash
# What Windows files import and export: check_tables.sh OBJDUMP CXXFILT LIBRARY PROGRAM [--accept]
# Library and program may ask for nothing but what Windows has, and the library exports what exports.txt beside this
# script lists, with --accept written anew for a change that is meant. Names are demangled and without their numbers.
set -euo pipefail
export LC_ALL=C

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
readonly usage='usage: check_tables.sh OBJDUMP CXXFILT LIBRARY PROGRAM [--accept]'
objdump=${1:?$usage} cxxfilt=${2:?$usage} library=${3:?$usage} program=${4:?$usage}
golden=$here/exports.txt
readonly kSystemLibraries='advapi32|kernel32|msvcrt|ole32|oleaut32|setupapi|shell32|user32|version'

status=0
Complain() {
  printf '%s\n%s\n' "$1" "$2"
  status=1
}

Imports() { "$objdump" -p "$1" | sed -n 's/^[[:space:]]*DLL Name: //p' | tr '[:upper:]' '[:lower:]'; }
CheckImports() {
  local foreign
  foreign=$(Imports "$1" | grep -vxE "($kSystemLibraries|$2)\\.dll" || true)
  [[ -z $foreign ]] || Complain "$1 needs libraries that Windows does not have:" "$foreign"
}
CheckImports "$library" 'none'
CheckImports "$program" 'norv-battery-info'
[[ -n $(Imports "$library") ]] || Complain "$library" "has no import table that could be read"
# The security of the process is the host's to set.
if "$objdump" -p "$library" | grep -q CoInitializeSecurity; then
  Complain "$library calls what is the host's to call:" CoInitializeSecurity
fi

exported=$("$objdump" -p "$library" |
  sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/s/^[[:space:]]*\[ *[0-9]*\]\( +base\[ *[0-9]*\] *[0-9a-f]*\)\{0,1\} *\(.*\)$/\2/p' |
  sed -E 's/^[0-9a-f]{4} +//' | "$cxxfilt" | sed -E 's/\[abi:[a-z0-9]+\]//g; s/std::__cxx11::/std::/g' | sort -u)
if [[ ${5:-} == --accept ]]; then
  printf '%s\n' "$exported" >"$golden"
  exit
fi
foreign=$(grep -vE '^((vtable|typeinfo|typeinfo name) for )?norv::(shared::(battery|error|norvbios|wmi)|platform)::[A-Z]' \
  <<<"$exported" | grep -vE '^(norvSharedInitializeLogger|norv_battery_[a-z0-9_]+)$' || true)
[[ -z $foreign ]] || Complain 'The library exports names that are not its own interface:' "$foreign"
gone=$(comm -13 <(printf '%s\n' "$exported") "$golden")
new=$(comm -23 <(printf '%s\n' "$exported") "$golden")
[[ -z $gone ]] || Complain 'No longer exported, so that existing hosts fail to load:' "$gone"
[[ -z $new ]] || Complain "Newly exported (if that is meant: $0 ... --accept):" "$new"
exit "$status"
