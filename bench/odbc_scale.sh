#!/usr/bin/env bash
# Measures talp's "ODBC" source through the MariaDB ODBC driver on a generated
# catalogue table of a throw-away MariaDB server, against unixODBC's isql running
# the same statements over the same data source: time (median of five runs, output
# to a file) and peak memory. Usage:
#   bench/odbc_scale.sh [BUILD_FOLDER] [ROWS]     (defaults: build-release 1000000)
set -euo pipefail

build=${1:-build-release}
rows=${2:-1000000}
cd "$(dirname "$0")/.."
# shellcheck source=bench/timing.sh
. bench/timing.sh
talp="$build/talp"
work=$(mktemp -d)
db=$(mktemp -d /tmp/talp-odbc-bench-db.XXXXXX)
dsns=$(mktemp -d /tmp/talp-odbc-bench.XXXXXX)
trap 'scripts/odbc-dsn.sh stop "$dsns"; scripts/mariadb-server.sh stop "$db"; rm -rf "$work"' EXIT

scripts/mariadb-server.sh start "$db" >/dev/null
read -r count text_bytes load stored < <(bench/load_catalogue.sh "$db" "$rows" "$work")
echo "catalogue: $count rows, $text_bytes bytes as TAB text, loaded in $load s;" \
     "$stored bytes of field values stored"

scripts/odbc-dsn.sh start "$dsns" "$db/server.env" >/dev/null
set -a
# shellcheck disable=SC1091
. "$db/server.env"
# shellcheck disable=SC1091
. "$dsns/odbc.env"
set +a
# isql takes the account from the data source, so the password stays off its
# command line; talp takes it from TALP_PASSWORD.
{
  echo
  echo "[talp_bench]"
  sed -n '/^\[talp_mariadb\]/,/^$/{/^\[/d;/^$/d;p}' "$dsns/odbc.ini"
  echo "USER = $TALP_MYSQL_USER"
  echo "PASSWORD = $TALP_MYSQL_PASSWORD"
} >>"$dsns/odbc.ini"
export TALP_PASSWORD=$TALP_MYSQL_PASSWORD
source=(--type ODBC --dsn talp_bench --user "$TALP_MYSQL_USER" --table catalogue --raw)

word=chisel
# The statements talp builds: the search word in every column but the last (ean).
list_sql="SELECT name,price FROM catalogue WHERE"
for column in sku name category brand price stock description; do
  list_sql+=" $column LIKE '%$word%' OR"
done
list_sql="${list_sql% OR} ORDER BY price ASC LIMIT 200"
all_sql="SELECT * FROM catalogue"

echo "$list_sql" >"$work/list.sql"
echo "$all_sql" >"$work/all.sql"
isql_run() { sh -c 'isql -b -x0x09 talp_bench <"$1"' _ "$work/$1.sql"; }

median() { median_seconds 5 "$work/out" "$@"; }  # the loop answers 1
peak() { peak_kib "$work/out" "$@"; }

declare -A t m o
measure() {
  local name=$1
  shift
  t[$name]=$(median "$@")
  m[$name]=$(peak "$@")
  o[$name]=$(wc -c <"$work/out")
}
isql_run all >/dev/null  # warms the buffer pool for everybody
measure isql_list sh -c 'isql -b -x0x09 talp_bench <"$1"' _ "$work/list.sql"
measure talp_list "$talp" list "${source[@]}" --key name --sort price --search "$word"
measure isql_all sh -c 'isql -b -x0x09 talp_bench <"$1"' _ "$work/all.sql"
measure talp_loop "$talp" loop "${source[@]}"
measure talp_group "$talp" group "${source[@]}" --group category --contents "[name]"
# The group's result text in memory: UTF-16, two bytes a character.
group_text=$(("$(iconv -f UTF-8 -t UTF-16LE <"$work/out" | wc -c)"))

cat <<REPORT

| $count rows, output to a file | seconds | x isql | peak MB | output MB |
|---|---|---|---|---|
| isql -b: list statement | ${t[isql_list]} | 1 | $(mb $((m[isql_list] * 1024))) | $(mb "${o[isql_list]}") |
| talp list --search $word | ${t[talp_list]} | $(ratio "${t[talp_list]}" "${t[isql_list]}") | $(mb $((m[talp_list] * 1024))) | $(mb "${o[talp_list]}") |
| isql -b: $all_sql | ${t[isql_all]} | 1 | $(mb $((m[isql_all] * 1024))) | $(mb "${o[isql_all]}") |
| talp loop (the source has none) | ${t[talp_loop]} | $(ratio "${t[talp_loop]}" "${t[isql_all]}") | $(mb $((m[talp_loop] * 1024))) | $(mb "${o[talp_loop]}") |
| talp group --group category | ${t[talp_group]} | $(ratio "${t[talp_group]}" "${t[isql_all]}") | $(mb $((m[talp_group] * 1024))) | $(mb "${o[talp_group]}") |

The group's result text: $(mb "$group_text") MB as UTF-16; peak memory $(ratio $((m[talp_group] * 1024)) "$group_text") x that.
List statement: $list_sql
REPORT
