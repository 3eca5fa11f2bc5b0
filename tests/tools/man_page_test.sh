#!/usr/bin/env bash
# talp(1): man renders it without a warning, and it gives every operation,
# option and environment variable that `talp --help` names an entry (a
# bold .B, .BI or .BR line), and every exit status.
# Usage: man_page_test.sh TALP PAGE
set -uo pipefail
talp=$1
page=$2
failures=0
fail() {
  echo "FAIL $*"
  failures=$((failures + 1))
}

warnings=$(MANWIDTH=80 man --warnings=w -E UTF-8 -l "$page" 2>&1 > /dev/null)
[[ -z $warnings ]] || fail "man -l warns: $warnings"

help=$("$talp" --help)
source_text=$(sed 's/\\-/-/g' "$page")
entries=$(grep -E '^\.B[IR]? ' <<< "$source_text")
names=$(awk '/^Operations:/ { on = 1; next } on && /^$/ { exit } on && $1 ~ /^[a-z]+$/ { print $1 }' <<< "$help")
names+=" $(grep -oE '(^|[ [(])--?[a-z][a-z0-9-]*' <<< "$help" | sed 's/^[ [(]//' | sort -u)"
names+=" $(grep -oE 'TALP_[A-Z_]+' <<< "$help" | sort -u)"
for name in $names; do
  grep -qE -- "(^|[^a-z-])$name([^a-z0-9-]|$)" <<< "$entries" || fail "the page has no entry for $name"
done
for status in 0 1 2 3; do
  grep -qxE -- "\.B $status" <<< "$source_text" || fail "the page does not explain exit status $status"
done
exit $((failures > 0))
