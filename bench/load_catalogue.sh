#!/usr/bin/env bash
# Loads the generated catalogue of bench/make_catalogue.py (ROWS records) into
# the table `catalogue` of a throw-away MariaDB server started by
# scripts/mariadb-server.sh in SERVER_DIR, replacing the small example table;
# WORK is a scratch folder. Prints one line: rows, TAB text bytes, load time,
# stored bytes of field values. Usage:
#   bench/load_catalogue.sh SERVER_DIR ROWS WORK
set -euo pipefail

db=${1:?usage: load_catalogue.sh SERVER_DIR ROWS WORK}
rows=${2:?}
work=${3:?}
cd "$(dirname "$0")/.."
# shellcheck disable=SC1091
. "$db/server.env"
client=(mariadb --defaults-file="$db/client.cnf" --database="$TALP_MYSQL_DATABASE")

python3 bench/make_catalogue.py "$rows" "$work/big"

# The server is made for tests of a few rows; a buffer pool that holds the
# whole table keeps the disk out of both the load and the reads.
load_start=$(date +%s.%N)
"${client[@]}" --local-infile=1 <<SQL
SET GLOBAL innodb_buffer_pool_size = 1024 * 1024 * 1024;
SET GLOBAL innodb_log_file_size = 512 * 1024 * 1024;
SET GLOBAL local_infile = 1;
DROP TABLE catalogue;
CREATE TABLE catalogue (sku INT PRIMARY KEY, name VARCHAR(255), category VARCHAR(255),
  brand VARCHAR(255), price DECIMAL(10,2), stock INT, description VARCHAR(255), ean VARCHAR(20))
  CHARACTER SET utf8mb4;
LOAD DATA LOCAL INFILE '$work/big.txt' INTO TABLE catalogue CHARACTER SET utf8mb4
  FIELDS TERMINATED BY '\t' ESCAPED BY '' LINES TERMINATED BY '\n' IGNORE 1 LINES;
SQL
load=$(printf '%.2f' "$(echo "$(date +%s.%N) - $load_start" | bc)")
count=$("${client[@]}" --batch --skip-column-names -e 'SELECT COUNT(*) FROM catalogue')
stored=$("${client[@]}" --batch --skip-column-names -e 'SELECT SUM(LENGTH(sku) + LENGTH(name)
  + LENGTH(category) + LENGTH(brand) + LENGTH(price) + LENGTH(stock) + LENGTH(description)
  + LENGTH(ean)) FROM catalogue')
echo "$count $(stat -c %s "$work/big.txt") $load $stored"
