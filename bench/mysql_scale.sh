#!/usr/bin/env bash
# Measures talp's "mySQL" source on a generated catalogue table of a throw-away
# MariaDB server, against the mariadb client and bench/mysql_baseline (the client
# library used directly): time (median of five runs) and peak memory. Usage:
#   bench/mysql_scale.sh [BUILD_FOLDER] [ROWS]     (defaults: build-release 1000000)
set -euo pipefail

build=${1:-build-release}
rows=${2:-1000000}
cd "$(dirname "$0")/.."
# shellcheck source=bench/timing.sh
. bench/timing.sh
talp="$build/talp"
baseline="$build/bench/mysql_baseline"
work=$(mktemp -d)
db=$(mktemp -d /tmp/talp-mysql-bench.XXXXXX)
trap 'scripts/mariadb-server.sh stop "$db"; rm -rf "$work"' EXIT

scripts/mariadb-server.sh start "$db" >/dev/null
# shellcheck disable=SC1091
. "$db/server.env"
export TALP_PASSWORD=$TALP_MYSQL_PASSWORD
client=(mariadb --defaults-file="$db/client.cnf" --database="$TALP_MYSQL_DATABASE")
connection=(--host "$TALP_MYSQL_HOST" --port "$TALP_MYSQL_PORT" --user "$TALP_MYSQL_USER"
            --database "$TALP_MYSQL_DATABASE" --table catalogue --type mySQL --raw)
target=("$TALP_MYSQL_HOST" "$TALP_MYSQL_PORT" "$TALP_MYSQL_USER" "$TALP_MYSQL_DATABASE" catalogue)

read -r count text_bytes load stored < <(bench/load_catalogue.sh "$db" "$rows" "$work")
echo "catalogue: $count rows, $text_bytes bytes as TAB text, loaded in $load s;" \
     "$stored bytes of field values stored"

# median of five runs of a command, its output thrown away
median() { median_seconds 5 /dev/null "$@"; }

# mean of fifty runs in a row
mean50() {
  local start end
  start=$(date +%s.%N)
  for _ in $(seq 50); do "$@" >/dev/null; done
  end=$(date +%s.%N)
  printf '%.4f\n' "$(echo "scale=6; ($end - $start) / 50" | bc)"
}

peak() { peak_kib /dev/null "$@"; }

key=1000500
[ "$rows" -gt 500 ] || key=1000000
mariadb_loop=("${client[@]}" --batch --skip-column-names -e 'SELECT * FROM catalogue')
baseline_loop=("$baseline" loop "${target[@]}")
talp_loop=("$talp" loop "${connection[@]}")

declare -A t m o
measure() {
  local tool=$1
  shift
  t[$tool]=$(median "$@")
  m[$tool]=$(peak "$@")
  o[$tool]=$("$@" | wc -c)
}
"${mariadb_loop[@]}" >/dev/null  # warms the buffer pool for everybody
measure mariadb "${mariadb_loop[@]}"
measure baseline "${baseline_loop[@]}"
measure talp "${talp_loop[@]}"
record_baseline=$(mean50 "$baseline" record "${target[@]}" sku "$key")
record_talp=$(mean50 "$talp" record "$key" "${connection[@]}" --key sku)

cat <<REPORT

| SELECT * FROM catalogue ($count rows) | seconds | x mariadb | x baseline | peak MB | x stored | output MB |
|---|---|---|---|---|---|---|
| mariadb --batch | ${t[mariadb]} | 1 | $(ratio "${t[mariadb]}" "${t[baseline]}") | $(mb $((m[mariadb] * 1024))) | $(ratio $((m[mariadb] * 1024)) "$stored") | $(mb "${o[mariadb]}") |
| mysql_baseline loop | ${t[baseline]} | $(ratio "${t[baseline]}" "${t[mariadb]}") | 1 | $(mb $((m[baseline] * 1024))) | $(ratio $((m[baseline] * 1024)) "$stored") | $(mb "${o[baseline]}") |
| talp loop | ${t[talp]} | $(ratio "${t[talp]}" "${t[mariadb]}") | $(ratio "${t[talp]}" "${t[baseline]}") | $(mb $((m[talp] * 1024))) | $(ratio $((m[talp] * 1024)) "$stored") | $(mb "${o[talp]}") |

| one record, sku $key (mean of 50 runs) | seconds | x baseline |
|---|---|---|
| mysql_baseline record | $record_baseline | 1 |
| talp record | $record_talp | $(ratio "$record_talp" "$record_baseline") |

Stored field values: $(mb "$stored") MB; data load: $load s.
REPORT
