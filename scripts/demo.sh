#!/usr/bin/env bash
# Shows talp at work on the bundled example catalogues: for each form the
# column list, a filtered loop and one record.
set -euo pipefail

talp=${1:?usage: demo.sh PATH_TO_TALP}
cd "$(dirname "$0")/.."

run() {
  echo
  echo "\$ talp $*"
  "$talp" "$@" --pretty || echo "(exit status $?)"
}

for file in examples/catalogue-tab.txt examples/catalogue-comma.csv examples/catalogue-semicolon.csv \
            examples/catalogue-utf16.txt examples/catalogue-ansi.txt examples/catalogue.xml; do
  echo
  echo "=== $file"
  source=(--type File --file "$file" --key sku)
  run columns "${source[@]}"
  run loop "${source[@]}" --where fasteners
  run record 1005 "${source[@]}"
done

echo
echo "=== the record list (key column and sort column of the selected records)"
run list --type File --file examples/catalogue-comma.csv --key name --sort price --search tools

echo
echo "=== word styling: every process type on one record"
run style 1005 --styling @examples/styling.xml --type File --file examples/catalogue-tab.txt --key sku

echo
echo "=== the group loop: tools and fasteners grouped by category"
run group --type File --file examples/catalogue-comma.csv --group category --contents "[name]" --query "where category LIKE '%s'"
