#!/usr/bin/env bash
# Shows talp at work on the bundled example catalogues: for each file form the
# column list, a filtered loop and one record; word styling (with a "Script"
# process); the catalogue served by a data script through the Custom source;
# then the same catalogue in a throw-away MariaDB server through the mySQL
# source, and through the SQLite ODBC driver with every operation of the ODBC
# source.
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

echo
echo "=== the Custom source: a data script serves the catalogue (its DataQuery is a search word)"
source=(--type Custom --script examples/catalogue-script.js --key sku)
run columns "${source[@]}"
run loop "${source[@]}" --where paint
run record 1005 "${source[@]}"
run list "${source[@]}" --sort price --search safety
run group "${source[@]}" --group category --contents "[name]" --query "where category LIKE '%s'"

echo
echo "=== the mySQL source: the example catalogue in a throw-away MariaDB server"
server=$(mktemp -d /tmp/talp-demo-mariadb.XXXXXX)
trap 'scripts/mariadb-server.sh stop "$server" > /dev/null' EXIT
scripts/mariadb-server.sh start "$server" > /dev/null
set -a
. "$server/server.env"
set +a
export TALP_PASSWORD=$TALP_MYSQL_PASSWORD
source=(--type mySQL --host "$TALP_MYSQL_HOST" --port "$TALP_MYSQL_PORT" --user "$TALP_MYSQL_USER"
        --database "$TALP_MYSQL_DATABASE" --table catalogue --key sku)
run tables "${source[@]}"
run columns "${source[@]}"
run list "${source[@]}" --sort price --search fasteners
run loop "${source[@]}" --where "WHERE category='tools'"
run record 1005 "${source[@]}" --group category --contents "[name]"
run group "${source[@]}" --group category --contents "[name] [price]" \
    --query "SELECT * FROM catalogue ORDER BY category, sku"

echo
echo "=== the ODBC source: the example catalogue through the SQLite ODBC driver (scripts/odbc-dsn.sh)"
odbc=$(mktemp -d /tmp/talp-demo-odbc.XXXXXX)
trap 'scripts/odbc-dsn.sh stop "$odbc"; scripts/mariadb-server.sh stop "$server" > /dev/null' EXIT
scripts/odbc-dsn.sh start "$odbc" > /dev/null
set -a
. "$odbc/odbc.env"
set +a
source=(--type ODBC --dsn talp_sqlite --table catalogue --key sku)
run tables "${source[@]}"
run columns "${source[@]}"
run list "${source[@]}" --sort price --search screws
echo "(the last column, description, is never searched: Torx finds nothing)"
run list "${source[@]}" --sort price --search Torx
run loop "${source[@]}" --where "WHERE category='tools'"
run record 1005 "${source[@]}" --group category --contents "[name]"
run group "${source[@]}" --group category --contents "[name] [price]" \
    --query "SELECT * FROM catalogue ORDER BY category, sku"
run update "Spirit level 80 cm" "${source[@]}" --field name --key-value 1005
run record 1005 "${source[@]}"
