#!/usr/bin/env bash
# Shows talp at work on the bundled examples.
set -euo pipefail

talp=${1:?usage: demo.sh PATH_TO_TALP}
cd "$(dirname "$0")/.."

run() {
  echo
  echo "\$ talp $*"
  "$talp" "$@" --pretty || echo "(exit status $?)"
}

echo "talp demo on examples/ (sources not yet built answer with nothing)"
run columns --type File --file examples/catalogue.txt
run list --type File --file examples/catalogue.txt --key sku --sort name
run loop --type File --file examples/catalogue.txt --where "where category LIKE 'tools'"
run record 1002 --type File --file examples/catalogue.txt --key sku
