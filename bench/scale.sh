#!/usr/bin/env bash
# Measures talp on a generated catalogue against grep and Python's csv module:
# time (median of alternating runs) and peak memory. Usage:
#   bench/scale.sh [BUILD_FOLDER] [RECORDS]     (defaults: build-release 1000000)
set -euo pipefail

build=${1:-build-release}
records=${2:-1000000}
talp="$build/talp"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$(dirname "$0")/.."
# shellcheck source=bench/timing.sh
. bench/timing.sh

python3 bench/make_catalogue.py "$records" "$work/big"
python3 bench/make_catalogue.py "$((records / 10))" "$work/small"
echo "catalogue: $records records, $(stat -c %s "$work/big.txt") bytes (TAB), $(stat -c %s "$work/big.csv") bytes (comma)"

median() { median_seconds 3 "$work/out" "$@"; }
peak() { peak_kib /dev/null "$@"; }

word=chisel
like="where sku LIKE '1000%'"
near_end=$((1000000 + records - 10))

csv_to_tab() {
  python3 -c 'import csv,sys
w=sys.stdout
for row in csv.reader(open(sys.argv[1], newline="", encoding="utf-8")):
    w.write("\t".join(row) + "\n")' "$1"
}

declare -A t
for round in 1 2; do  # alternate the tools so that neither gets a warmer cache
  t[grep_tab]=$(median grep -i "$word" "$work/big.txt")
  t[loop_word]=$(median "$talp" loop --type File --file "$work/big.txt" --where "$word")
  t[loop_like]=$(median "$talp" loop --type File --file "$work/big.txt" --where "$like")
  t[grep_csv]=$(median grep -i "$word" "$work/big.csv")
  t[loop_csv]=$(median "$talp" loop --type File --file "$work/big.csv" --where "$word")
  t[record]=$(median "$talp" record "$near_end" --type File --file "$work/big.txt" --key sku)
  t[loop_small]=$(median "$talp" loop --type File --file "$work/small.txt" --where "$word")
  t[loop_all]=$(median "$talp" loop --type File --file "$work/big.txt")
  t[group]=$(median "$talp" group --type File --file "$work/big.txt" --group category --contents "[name]" \
             --styling @bench/group-styling.xml)
  t[group_small]=$(median "$talp" group --type File --file "$work/small.txt" --group category --contents "[name]" \
                   --styling @bench/group-styling.xml)
done
t[python_csv]=$(median csv_to_tab "$work/big.csv")

size=$(stat -c %s "$work/big.txt")
mem_word=$(peak "$talp" loop --type File --file "$work/big.txt" --where "$word")
mem_all=$(peak "$talp" loop --type File --file "$work/big.txt")
mem_csv=$(peak "$talp" loop --type File --file "$work/big.csv" --where "$word")

cat <<REPORT

| measurement | seconds | ratio | target |
|---|---|---|---|
| grep -i $word (TAB file) | ${t[grep_tab]} | 1 | |
| talp loop --where $word (TAB) | ${t[loop_word]} | $(ratio "${t[loop_word]}" "${t[grep_tab]}") x grep | <= 2 |
| talp loop --where "$like" (TAB) | ${t[loop_like]} | $(ratio "${t[loop_like]}" "${t[grep_tab]}") x grep | <= 2 |
| grep -i $word (comma file) | ${t[grep_csv]} | 1 | |
| talp loop --where $word (comma, quoted fields) | ${t[loop_csv]} | $(ratio "${t[loop_csv]}" "${t[grep_csv]}") x grep | <= 3 |
| Python csv, comma to TAB | ${t[python_csv]} | $(ratio "${t[python_csv]}" "${t[loop_csv]}") x talp | >= 5 |
| talp record $near_end (near the end) | ${t[record]} | $(ratio "${t[record]}" "${t[loop_word]}") x loop | <= 1.5 |
| talp loop, $((records / 10)) records | ${t[loop_small]} | $(ratio "${t[loop_word]}" "${t[loop_small]}") for 10x records | <= 11 |
| talp loop, every record (TAB) | ${t[loop_all]} | 1 | |
| talp group by category, 5-process styling | ${t[group]} | $(ratio "${t[group]}" "${t[loop_all]}") x loop | <= 3 |
| the same group, $((records / 10)) records | ${t[group_small]} | $(ratio "${t[group]}" "${t[group_small]}") for 10x records | <= 11 |

| peak memory | kB | x file size | target |
|---|---|---|---|
| loop --where $word (TAB) | $mem_word | $(echo "scale=2; $mem_word * 1024 / $size" | bc) | <= 6 |
| loop, every record (TAB) | $mem_all | $(echo "scale=2; $mem_all * 1024 / $size" | bc) | <= 6 |
| loop --where $word (comma) | $mem_csv | $(echo "scale=2; $mem_csv * 1024 / $(stat -c %s "$work/big.csv")" | bc) | <= 6 |
REPORT
