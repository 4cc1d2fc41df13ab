#!/usr/bin/env bash
# Writes what is made of the catalogue of fields: generate.sh PROGRAM [--check]
# PROGRAM is norv-battery-catalogue. With --check nothing is written; what is not up to date is named, and the status is 1.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
readonly root program=${1:?usage: generate.sh PROGRAM [--check]} check=${2:-}

Make() {
  local file=$root/$1 made
  made=$("$program" "${@:2}" && echo .)
  made=${made%.}
  if [[ $check == --check ]]; then
    printf '%s' "$made" | cmp -s - "$file" && return
    printf '%s is not up to date with src/fields/Catalogue.h: run ./dev generate\n' "$1" >&2
    return 1
  fi
  printf '%s' "$made" >"$file"
}

status=0
Make bindings/python/norv_battery/_catalogue.py python || status=1
Make simulator/machine.schema.json schema "$root/simulator/machine.schema.json" || status=1
Make docs/fields.md document "$root/docs/fields.md" || status=1
exit "$status"
