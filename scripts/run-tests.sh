#!/usr/bin/env bash
# Runs every test of one build folder: starts the servers the tests need,
# runs ctest, and stops what it started, also when the tests fail.
#
# The MySQL tests read the throw-away server from TALP_MYSQL_HOST, _PORT, _SOCKET,
# _USER, _PASSWORD and _DATABASE. Each run gets its own server in a fresh folder,
# so two builds can test at the same time. The ODBC tests read their data sources
# (the SQLite driver, and the MariaDB driver on that server) from the folder that
# scripts/odbc-dsn.sh writes, through ODBCSYSINI and the TALP_ODBC_* variables.
set -euo pipefail

build=${1:?usage: run-tests.sh BUILD_FOLDER}
scripts=$(cd "$(dirname "$0")" && pwd)

# In /tmp rather than $TMPDIR: the server's socket path must stay short.
server_dir=$(mktemp -d /tmp/talp-mariadb.XXXXXX)
odbc_dir=$(mktemp -d /tmp/talp-odbc.XXXXXX)
trap '"$scripts/odbc-dsn.sh" stop "$odbc_dir"; "$scripts/mariadb-server.sh" stop "$server_dir"' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

"$scripts/mariadb-server.sh" start "$server_dir"
set -a
# shellcheck source=/dev/null
. "$server_dir/server.env"
"$scripts/odbc-dsn.sh" start "$odbc_dir" "$server_dir/server.env" >/dev/null
# shellcheck source=/dev/null
. "$odbc_dir/odbc.env"
set +a

cd "$build"
status=0
ctest --output-on-failure -j "$(nproc)" --timeout 300 || status=$?
exit "$status"
