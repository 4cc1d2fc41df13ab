#!/usr/bin/env bash
# Format, style and layering of the sources: tests/lint/run.sh WORK-FOLDER, which keeps what clang-tidy has seen.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
readonly here
mkdir -p "${1:?usage: tests/lint/run.sh WORK-FOLDER}"
work=$(cd "$1" && pwd)
readonly work
# shellcheck source=tests/checks.sh
. "$here/../checks.sh"
cd "$here/../.."

Sources() { tests/lint/sources.sh "$@"; }

# None FORBIDDEN-PATTERN WHY FILE ...: fails and shows the lines when one of the files matches, in letters of any case.
None() {
  local pattern=$1 why=$2 found
  shift 2
  found=$(grep -niE "$pattern" "$@" /dev/null || true)
  [[ -z $found ]] || { printf '%s\n%s\n' "$why" "$found"; return 1; }
}

Format() { Sources | xargs -r clang-format --dry-run -Werror; }

# clang's compile commands, with the product's sources joined: clang-tidy takes as long for ten of them, which include much
# the same, as for one. That they are joined is what the first of the two checks left out would complain about; the second,
# which takes them for headers then, looks at the real headers with the tests.
readonly kNotOfJoinedSources=--checks=-bugprone-suspicious-include,-google-global-names-in-headers
CompileCommands() {
  cmake -S . -B "$work" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCMAKE_UNITY_BUILD=ON
}

Tidy() { tests/lint/tidy.py "$work" "$@"; }

# The library under src/ reaches the outside world through the platform seam alone.
SystemIncludes() {
  local systems='windows|winsock2?|ws2tcpip|objbase|comdef|wbemidl|oleauto|atl[a-z]*|io|direct|process|tchar|unistd'
  systems+='|dlfcn|fcntl|pthread|spawn|poll|termios|dirent|pwd|syslog|sys/[^>"]*|linux/[^>"]*|netinet/[^>"]*'
  local files
  mapfile -t files < <(Sources src)
  None "^[[:space:]]*#[[:space:]]*include[[:space:]]*[<\"]($systems)\\.h[>\"]" \
    "an operating-system header is included under src/; it belongs into platform/:" "${files[@]}"
}

UpwardIncludes() {
  local files
  mapfile -t files < <(Sources src platform)
  None '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]([^>"]*/)?(json|simulator|tools|nlohmann|CLI|gtest|gmock)/' \
    "the library includes something of the simulator, the tool, the tests or their JSON:" "${files[@]}"
}

ToolIncludes() {
  local files decoders
  mapfile -t files < <(Sources tools)
  decoders=$(cd src/record && printf '|%s' *.h)  # a folder of the tool has the same name
  None "^[[:space:]]*#[[:space:]]*include[[:space:]]*\"(\.\./)*((src|platform|access|settings|diagnostics)/|record/(${decoders:1})\")" \
    "the tool includes what is not installed, nor the catalogue; it is a host like any other:" "${files[@]}"
}

# CMake picks the system's folder; only the export macro has to know the system.
SystemConditions() {
  local files
  mapfile -t files < <(Sources | grep -vE '^(include/battery/Export\.h|platform/.*)$')
  local systems='_*(win32|win64|mingw32|mingw64|msc_ver|linux|unix|apple|cygwin|freebsd|android)_*'
  None "^[[:space:]]*#[[:space:]]*(if|ifdef|ifndef|elif|elifdef|elifndef)\\b.*\\b$systems\\b" \
    "a condition on the operating system outside include/battery/Export.h and platform/:" "${files[@]}"
}

# A host of any C++17 compiler reads these headers: no Windows header, no log macro, no third-party type.
PublicIncludes() {
  local files
  mapfile -t files < <(Sources include | grep -vxF include/battery/norv_battery.h)
  None '^[[:space:]]*#[[:space:]]*include[[:space:]]*(<([^>]*/|[a-z_0-9]+\.h>)|"(windows|plog|nlohmann|CLI)[./])' \
    "a public header includes more than the standard library and the project's own headers:" "${files[@]}"
}

# The C header is for every compiler and binding generator there is: three headers of C99 and no other.
CIncludes() {
  local others
  others=$(grep -E '^[[:space:]]*#[[:space:]]*include' include/battery/norv_battery.h |
    grep -vE '^#include <std(bool|def|int)\.h>$' || true)
  [[ -z $others ]] || { printf 'the C header includes more than it may:\n%s\n' "$others"; return 1; }
}

FieldLists() { tests/lint/catalogue.py lists; }
BlockPlaces() { tests/lint/catalogue.py places; }

# A conflict that was not settled, in whatever file.
ConflictMarkers() {
  local found
  found=$(grep -rnIE '^(<{7}|\|{7}|>{7}) ' --exclude-dir=.git --exclude-dir=.deps --exclude-dir=build . || true)
  [[ -z $found ]] || { printf 'markers of a conflict:\n%s\n' "$found"; return 1; }
}

ShellScripts() { grep -rlE '^#!/usr/bin/env bash' dev .ci tests tools simulator cmake 2>/dev/null; }
ShellSyntax() { ShellScripts | xargs -n 1 bash -n; }
ShellCheck() { ShellScripts | xargs shellcheck -x; }

Check "clang-format" Format || true
Check "no operating-system header under src/" SystemIncludes || true
Check "the library includes nothing of simulator, tool and tests" UpwardIncludes || true
Check "the tool includes installed headers only" ToolIncludes || true
Check "no second list of a battery's fields" FieldLists || true
Check "no second spelling of a block's offsets" BlockPlaces || true
Check "public headers include the standard library only" PublicIncludes || true
Check "the C header includes three standard headers only" CIncludes || true
Check "no condition on the operating system outside its two places" SystemConditions || true
Check "no marker of a conflict" ConflictMarkers || true
Check "links of the pages" python3 -B tests/docs/links.py . || true
Check "shell scripts: syntax" ShellSyntax || true
Check "shell scripts: shellcheck" ShellCheck || true
if Check "compile commands for clang" CompileCommands; then
  Check "clang-tidy" Tidy src platform json simulator tools -- "$kNotOfJoinedSources" || true
  # GoogleTest's macros take clang-tidy several times as long as they are worth; the compiler's own view is enough for
  # tests. The collection's destructor is not virtual by contract, and tests delete collections, never anything derived
  # from one.
  Check "tests compile with clang without a warning" Tidy tests bench -- '--checks=-*,clang-diagnostic-*,misc-static-assert,google-global-names-in-headers' \
    --extra-arg=-Wno-delete-non-abstract-non-virtual-dtor || true
fi
Summary
