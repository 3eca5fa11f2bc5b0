#!/usr/bin/env bash
# The bash completion of talp, run as bash runs it, against the real talp:
# each case completes the last of its words and lists what is offered.
# Usage: completion_test.sh TALP COMPLETION_SCRIPT
set -uo pipefail
export LC_ALL=C
talp=$1
# shellcheck source=/dev/null
. "$2"

dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
touch "$dir/a.txt" "$dir/a b.csv"

failures=0
# check NAME "EXPECTED, SORTED" WORD... : the completions of the last word.
check() {
  local name=$1 expected=$2
  shift 2
  COMP_WORDS=("$talp" "$@")
  COMP_CWORD=$#
  COMPREPLY=()
  _talp
  local got
  got=$( ((${#COMPREPLY[@]})) && printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd, - | sed 's/,/, /g')
  if [[ $got != "$expected" ]]; then
    echo "FAIL $name: offered [$got], expected [$expected]"
    failures=$((failures + 1))
  fi
}

check Operations "columns, databases, get, group, list, loop, record, sql, style, tables, update, upload" ""
check OperationAfterOptions "list, loop" --type File -d "x;y" --json l
check OptionsOfTheOperation "--script, --script-memory-limit, --script-time-limit, --sort" loop --s
check SourceTypes "Custom, File, ODBC, mySQL" loop --type ""
check DataFiles "$dir/a b.csv, $dir/a.txt" loop --file "$dir/a"
check TextFromAFile "@$dir/a b.csv, @$dir/a.txt" loop --where "@$dir/a"

registered=$(complete -p talp)
if [[ $registered != "complete -F _talp talp" ]]; then
  echo "FAIL Registered: $registered"
  failures=$((failures + 1))
fi
exit $((failures > 0))
