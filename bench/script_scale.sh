#!/usr/bin/env bash
# Scripts at scale: a data script that builds 100,000 records, run by talp's
# "Custom" source against the bare duk interpreter; and a "Script" process on
# every record of a 100,000-record File group loop against the same loop with
# a process that runs no script. Medians of three runs. Usage:
#   bench/script_scale.sh [BUILD_FOLDER] [RECORDS]     (defaults: build-release 100000)
set -euo pipefail

build=${1:-build-release}
records=${2:-100000}
talp="$(cd "$build" && pwd)/talp"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$(dirname "$0")/.."
# shellcheck source=bench/timing.sh
. bench/timing.sh

python3 bench/make_catalogue.py "$records" "$work/big"

median() { median_seconds 3 "$work/out" "$@"; }

declare -A t
for round in 1 2; do  # alternate, so that neither gets a warmer cache
  t[duk]=$(median duk bench/scripts/shim.js bench/scripts/catalogue.js)
  t[custom]=$(median "$talp" loop --type Custom --script bench/scripts/catalogue.js --where "")
  t[plain]=$(median "$talp" group --type File --file "$work/big.txt" --styling @bench/scripts/plain-styling.xml)
  t[script]=$(median "$talp" group --type File --file "$work/big.txt" --styling @bench/scripts/script-styling.xml)
done
lines=$("$talp" loop --type Custom --script bench/scripts/catalogue.js | tr -cd '\r' | wc -c)

cat <<REPORT

| measurement | seconds | ratio | target |
|---|---|---|---|
| duk: the data script alone ($((lines + 1)) lines) | ${t[duk]} | 1 | |
| talp loop --type Custom over it ($lines records) | ${t[custom]} | $(echo "scale=2; ${t[custom]} / ${t[duk]}" | bc) x duk | <= 1.5 |
| talp group, $records records, a Concatenate process | ${t[plain]} | | |
| the same with a Script process instead | ${t[script]} | $(echo "scale=1; (${t[script]} - ${t[plain]}) * 1000000 / $records" | bc) µs a record | <= 20 |
REPORT
