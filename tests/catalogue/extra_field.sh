#!/usr/bin/env bash
# Builds the tree with a field more, made up, and looks for it on every face: extra_field.sh FOLDER
# Ends with `N passed, N failed`.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
mkdir -p "${1:?usage: tests/catalogue/extra_field.sh WORK-FOLDER}"
folder=$(cd "$1" && pwd)
readonly here root folder tree=$folder/tree
# shellcheck source=tests/checks.sh
. "$here/../checks.sh"

# The tree with one constant, one place and one row more.
Lay() {
  rm -rf "$tree"
  mkdir "$tree"
  (cd "$root" && git ls-files -z --cached --others --exclude-standard | xargs -0 cp --parents -t "$tree" 2>/dev/null || true)
  [[ ! -d $root/.deps ]] || cp -a "$root/.deps" "$tree"
  python3 -B "$here/add_field.py" "$tree"
}

Build() {
  cmake -S "$tree" -B "$tree/build" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_FLAGS=-O0 -DCMAKE_UNITY_BUILD=ON \
    -DNORV_BATTERY_BUILD_TESTS=ON &&
    cmake --build "$tree/build" --target norv-battery norv-battery-catalogue &&
    "$tree/tools/catalogue/generate.sh" "$tree/build/tools/catalogue/norv-battery-catalogue"
}

Tool() { "$tree/build/tools/norv-battery/norv-battery" "$@"; }

# Where the block holds 4711, a machine file's own key says so.
Machine() {
  cat >"$folder/machine.json" <<'JSON'
{"description": "A battery with a field more", "slots": [{"battery": {"serialNumber": "1", "madeUp": 4711}}, null]}
JSON
}

Has() { grep -qF -- "$1" || { printf 'expected %s\n' "$1"; return 1; }; }

Python() {
  NORV_BATTERY_LIBRARY=$tree/build/src/libnorv-battery-info.so PYTHONPATH=$tree/bindings/python python3 -B -c "
import norv_battery
block = bytearray(128)
block[0x60:0x62] = (4711).to_bytes(2, 'little')
battery = norv_battery.decode(block)
assert battery.made_up == 4711
assert norv_battery.describe(norv_battery.Field.MADE_UP).label == 'Made up'
assert battery.bytes(norv_battery.Field.MADE_UP) == bytes(block[0x60:0x62])
"
}

Machine
if Check "the tree builds with a field more" bash -c "$(declare -f Lay Build); $(declare -p root folder tree here); Lay && Build"; then
  Face() { Check "it is in $1" bash -o pipefail -c "$(declare -f Tool Has); $(declare -p tree folder); $2" || true; }
  Face "the JSON report" 'Tool report --machine "$folder/machine.json" --format json | Has "\"madeUp\": 4711"'
  Face "the text report" 'Tool report --machine "$folder/machine.json" | Has "Made up                         4711"'
  Face "decoded rows, JSON Lines" 'Tool encode --machine "$folder/machine.json" | Tool decode --format jsonl | Has "\"madeUp\":4711"'
  Face "decoded rows, CSV" 'Tool encode --machine "$folder/machine.json" | Tool decode --format csv | Has "capacity.madeUp"'
  Face "decoded rows, text" 'Tool encode --machine "$folder/machine.json" | Tool decode --format text | Has "Made up                         4711"'
  Face "watch" 'Tool watch --machine "$folder/machine.json" --count 1 --format jsonl | Has "\"madeUp\":4711"'
  Face "what encode takes" 'Tool report --machine "$folder/machine.json" --format json | sed s/4711/815/ | Tool encode | Tool decode --format jsonl | Has "\"madeUp\":815"'
  Face "a redacted recording" 'rm -f "$folder/redacted.json" && Tool record --machine "$folder/machine.json" --redact --output "$folder/redacted.json" && Tool report --machine "$folder/redacted.json" --format json | Has "\"madeUp\": 4711"'
  Face "the schema of machine files" 'Has "\"madeUp\": {" <"$tree/simulator/machine.schema.json"'
  Face "the page of fields" 'Has "madeUp" <"$tree/docs/fields.md"'
  Check "it is in the Python package and the C interface" Python || true
fi
Summary
