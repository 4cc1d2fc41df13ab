#!/usr/bin/env bash
# Builds the tree with a field more, made up, and looks for it on every face: extra_field.sh FOLDER
# Ends with `N passed, N failed`.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
mkdir -p "${1:?usage: tests/catalogue/extra_field.sh WORK-FOLDER}"
folder=$(cd "$1" && pwd)
readonly here root folder tree=$folder/tree machine=$folder/machine.json
# shellcheck source=tests/checks.sh
. "$here/../checks.sh"

# The tree with one constant, one place and one row more, and what is made of the catalogue made of that.
Build() {
  rm -rf "$tree" && mkdir "$tree"
  tar -C "$root" --exclude=./build --exclude=./.git -c . | tar -C "$tree" -x
  python3 -B "$here/add_field.py" "$tree"
  cmake -S "$tree" -B "$tree/build" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_FLAGS=-O0 -DCMAKE_UNITY_BUILD=ON
  cmake --build "$tree/build" --target norv-battery norv-battery-catalogue
  "$tree/tools/catalogue/generate.sh" "$tree/build/tools/catalogue/norv-battery-catalogue"
}

Tool() { "$tree/build/tools/norv-battery/norv-battery" "$@"; }

Json() { Tool report --machine "$machine" --format json; }
Text() { Tool report --machine "$machine"; }
Rows() { Tool encode --machine "$machine" | Tool decode --format "$1"; }
Watch() { Tool watch --machine "$machine" --count 1 --format jsonl; }
Encoded() { Json | sed s/4711/815/ | Tool encode | Tool decode --format jsonl; }

Redacted() {
  rm -f "$folder/redacted.json"
  Tool record --machine "$machine" --redact --output "$folder/redacted.json"
  Tool report --machine "$folder/redacted.json" --format json
}

Python() {
  NORV_BATTERY_LIBRARY=$tree/build/src/libnorv-battery-info.so PYTHONPATH=$tree/bindings/python python3 -B -c "
import norv_battery
block = bytearray(128)
block[0x60:0x62] = (4711).to_bytes(2, 'little')
battery = norv_battery.decode(block)
assert norv_battery.describe(norv_battery.Field.MADE_UP).label == 'Made up'
assert battery.bytes(norv_battery.Field.MADE_UP) == bytes(block[0x60:0x62])
print(battery.made_up)
"
}

# Holds TEXT COMMAND [ARGUMENT ...]: what the command prints has the text.
Holds() {
  local printed
  printed=$("${@:2}") || return
  [[ $printed == *"$1"* ]] || { printf 'expected %s in\n%s\n' "$1" "$printed"; return 1; }
}

printf '{"description": "A field more", "slots": [{"battery": {"serialNumber": "1", "madeUp": 4711}}, null]}' >"$machine"
if Check "the tree builds with a field more" Build; then
  Check "it is in the JSON report" Holds '"madeUp": 4711' Json || true
  Check "it is in the text report" Holds 'Made up                         4711' Text || true
  Check "it is in decoded rows, JSON Lines" Holds '"madeUp":4711' Rows jsonl || true
  Check "it is in decoded rows, CSV" Holds 'capacity.madeUp' Rows csv || true
  Check "it is in decoded rows, text" Holds 'Made up                         4711' Rows text || true
  Check "it is in watch" Holds '"madeUp":4711' Watch || true
  Check "it is in what encode takes" Holds '"madeUp":815' Encoded || true
  Check "it is in a redacted recording" Holds '"madeUp": 4711' Redacted || true
  Check "it is in the schema of machine files" Holds '"madeUp": {' cat "$tree/simulator/machine.schema.json" || true
  Check "it is in the page of fields" Holds 'madeUp' cat "$tree/docs/fields.md" || true
  Check "it is in the Python package and the C interface" Holds 4711 Python || true
fi
Summary
