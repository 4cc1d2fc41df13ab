# Sourced by the test scripts: runs checks, prints a line for each and at the end how many passed.
# shellcheck shell=bash

checksPassed=0
checksFailed=0

# Check TITLE COMMAND [ARGUMENT ...]: passes when the command succeeds. Its output is shown when it does not.
Check() {
  local title=$1 output
  shift
  if output=$("$@" 2>&1); then
    checksPassed=$((checksPassed + 1))
    printf 'passed  %s\n' "$title"
  else
    checksFailed=$((checksFailed + 1))
    printf 'FAILED  %s\n%s\n' "$title" "$output"
    return 1
  fi
}

# The last line of a script's output; the script's status is that of this function.
Summary() {
  printf '%d passed, %d failed\n' "$checksPassed" "$checksFailed"
  [[ $checksFailed == 0 ]]
}
