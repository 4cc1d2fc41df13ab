#!/usr/bin/env bash
# Runs a Windows program: wine.sh PROGRAM [ARGUMENT ...]
# In a Wine of its own, kept in NORV_WINE_PREFIX or else below build/, so that nobody's Wine is changed.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export WINEPREFIX=${NORV_WINE_PREFIX:-$(cd "$here/../.." && pwd)/build/wine}
export WINEDEBUG=${WINEDEBUG:--all} WINEARCH=win64
# No downloads of .NET and browser engines, no entries in this desktop's menus, no windows; and no debugger, with which a
# program that crashed would end as if it had not.
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe,winedbg.exe=d${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
unset DISPLAY WAYLAND_DISPLAY

if [[ ! -e $WINEPREFIX/ready ]]; then
  mkdir -p "$WINEPREFIX"
  # Two programs that start at once make one prefix.
  exec {lock}>"$WINEPREFIX/lock"
  flock "$lock"
  if [[ ! -e $WINEPREFIX/ready ]]; then
    timeout 300 wineboot --init >"$WINEPREFIX/log" 2>&1 {lock}>&- || { cat "$WINEPREFIX/log" >&2; exit 1; }
    : >"$WINEPREFIX/ready"
  fi
  exec {lock}>&-
fi

# Services and the desktop, which Wine starts when a program first needs them, hold that program's output open for as long
# as they run. In files that harms nobody; whoever reads a pipe to its end would wait for them.
output=$(mktemp -d)
trap 'rm -rf "$output"' EXIT
status=0
wine "$@" >"$output/out" 2>"$output/err" || status=$?
cat "$output/out"
cat "$output/err" >&2
exit "$status"
