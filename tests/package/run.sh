#!/usr/bin/env bash
# Unpacks the archives for Linux and Windows and runs the tool from each: tests/package/run.sh LINUX-BUILD WINDOWS-BUILD
# WORK-FOLDER. Ends with `N passed, N failed`.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
readonly here
root=$(cd "$here/../.." && pwd)
readonly root
readonly usage='usage: tests/package/run.sh LINUX-BUILD WINDOWS-BUILD WORK-FOLDER'
linux=$(cd "${1:?$usage}" && pwd)
windows=$(cd "${2:?$usage}" && pwd)
mkdir -p "${3:?$usage}"
work=$(cd "$3" && pwd)
readonly linux windows work
export NORV_WINE_PREFIX=${NORV_WINE_PREFIX:-$windows/wine}
# shellcheck source=tests/checks.sh
. "$here/../checks.sh"

# Pack BUILD ENDING: an archive of the build, unpacked into $work/ENDING.
Pack() {
  rm -rf "${work:?}/$2" "${work:?}"/norv-battery-info-*."$2"
  cpack --config "$1/CPackConfig.cmake" -B "$work" || return
  mkdir "$work/$2" && cmake -E chdir "$work/$2" cmake -E tar xf "$work"/norv-battery-info-*".$2"
}

# Has FOLDER PATTERN ...: the one folder inside has a file for each pattern.
Has() {
  local folder=$1 pattern missing=0
  shift
  for pattern in "$@"; do
    if ! compgen -G "$folder/*/$pattern" >/dev/null; then
      printf 'missing in the archive: %s\n' "$pattern"
      missing=1
    fi
  done
  return "$missing"
}

readonly kEverywhere=(include/battery/NorvBatteries.h include/norv/platform/Platform.h include/norv/shared/error/Error.h
                      include/norv/simulator/SimulatedMachine.h share/norv-battery-info/machines/two-batteries.json
                      'share/doc/*/README.md' 'share/doc/*/docs/tool.md' 'lib*/cmake/norv-battery-info/*-config.cmake')

# Reports as COMMAND ... prints them, against the one kept.
Reports() {
  diff <("$@" report --machine two-batteries --cell-swell --test | tr -d '\r') "$root/tests/tool/golden/two-batteries.txt"
}

Check "the archive for Linux" Pack "$linux" tar.gz || true
Check "Linux: has what belongs in it" Has "$work/tar.gz" "${kEverywhere[@]}" bin/norv-battery \
  'lib*/libnorv-battery-info.so' 'lib*/libnorv-battery-simulator.a' || true
Check "Linux: the links of its pages" python3 -B "$root/tests/docs/links.py" "$work/tar.gz" || true
Check "Linux: the tool reports" Reports "$work"/tar.gz/*/bin/norv-battery || true
Check "the archive for Windows" Pack "$windows" zip || true
Check "Windows: has what belongs in it" Has "$work/zip" "${kEverywhere[@]}" bin/norv-battery.exe bin/norv-battery-info.dll \
  lib/libnorv-battery-info.dll.a lib/libnorv-battery-simulator.a || true
Check "Windows: the links of its pages" python3 -B "$root/tests/docs/links.py" "$work/zip" || true
Check "Windows: the tool reports" Reports "$root/cmake/toolchains/wine.sh" "$work"/zip/*/bin/norv-battery.exe || true
Summary
