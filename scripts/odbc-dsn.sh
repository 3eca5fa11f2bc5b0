#!/usr/bin/env bash
# Writes ODBC data sources for the tests and for trying talp's "ODBC" source:
# a driver file (odbcinst.ini) and a data-source file (odbc.ini) of their own
# in one folder, which unixODBC reads when ODBCSYSINI names that folder. The
# packages' own /etc/odbcinst.ini is never read or changed.
#
#   odbc-dsn.sh start DIR [SERVER_ENV]   writes DIR/odbcinst.ini, DIR/odbc.ini, DIR/odbc.env
#   odbc-dsn.sh stop DIR                 removes DIR
#
# Data sources:
#   talp_sqlite    the SQLite driver (libsqliteodbc) on DIR/catalogue.db, the
#                  example catalogue; no server needed
#   talp_mariadb   the MariaDB driver (odbc-mariadb) on the throw-away server
#                  whose server.env (scripts/mariadb-server.sh) is SERVER_ENV;
#                  only with SERVER_ENV
#   talp_missing   a driver library that does not exist
# A connection string may override a source's settings, e.g. the DSN
# "talp_sqlite;Database=/tmp/other.db" or "talp_mariadb;DATABASE=other".
# DIR/odbc.env holds ODBCSYSINI, ODBCINI and the TALP_ODBC_* names to source.
set -euo pipefail
umask 077

usage() {
  echo "usage: $0 start DIR [SERVER_ENV] | stop DIR" >&2
  exit 2
}

[ $# -ge 2 ] || usage
action=$1
dir=$2
here=$(cd "$(dirname "$0")" && pwd)
catalogue_sql=$here/../examples/catalogue.sql
marker=talp-odbc.dir

# The driver libraries as Debian installs them, for this machine's architecture.
driver_library() {
  local path
  for path in /usr/lib/*/odbc/"$1" /usr/lib/odbc/"$1"; do
    [ -e "$path" ] && { echo "$path"; return 0; }
  done
  echo "odbc-dsn.sh: $1 is missing; run scripts/install-deps.sh" >&2
  exit 1
}

start() {
  local server_env=${1:-}
  mkdir -p -- "$dir"
  dir=$(cd "$dir" && pwd -P)
  if [ -n "$(ls -A "$dir")" ]; then
    echo "odbc-dsn.sh: $dir is not empty; stop it (or remove it) first" >&2
    exit 1
  fi
  : >"$dir/$marker"
  local sqlite mariadb
  sqlite=$(driver_library libsqlite3odbc.so)
  mariadb=$(driver_library libmaodbc.so)

  # The example catalogue without what only MySQL understands.
  sed -e '/^SET NAMES/d' -e 's/^) ENGINE=.*;$/);/' "$catalogue_sql" | sqlite3 "$dir/catalogue.db"

  # DontDLClose: the driver stays loaded between connections instead of being
  # loaded anew for every operation.
  cat >"$dir/odbcinst.ini" <<INI
[TALP SQLite]
Description = SQLite 3 (libsqliteodbc)
Driver = $sqlite
DontDLClose = 1

[TALP MariaDB]
Description = MariaDB Connector/ODBC (odbc-mariadb)
Driver = $mariadb
DontDLClose = 1

[TALP Missing]
Description = a driver library that does not exist
Driver = $dir/no-such-driver.so
INI

  {
    echo "[talp_sqlite]"
    echo "Driver = TALP SQLite"
    echo "Database = $dir/catalogue.db"
    echo
    echo "[talp_missing]"
    echo "Driver = TALP Missing"
  } >"$dir/odbc.ini"
  if [ -n "$server_env" ]; then
    # shellcheck source=/dev/null
    . "$server_env"
    # The user and password come with each connection, never from this file.
    {
      echo
      echo "[talp_mariadb]"
      echo "Driver = TALP MariaDB"
      echo "SERVER = $TALP_MYSQL_HOST"
      echo "PORT = $TALP_MYSQL_PORT"
      echo "DATABASE = $TALP_MYSQL_DATABASE"
      # Characters beyond the Basic Multilingual Plane survive both ways.
      echo "CHARSET = utf8mb4"
    } >>"$dir/odbc.ini"
  fi
  : >"$dir/user-odbc.ini"

  {
    echo "ODBCSYSINI=$dir"
    echo "ODBCINI=$dir/user-odbc.ini"
    echo "TALP_ODBC_SQLITE_DSN=talp_sqlite"
    [ -n "$server_env" ] && echo "TALP_ODBC_MARIADB_DSN=talp_mariadb"
    echo "TALP_ODBC_MISSING_DSN=talp_missing"
  } >"$dir/odbc.env"
  cat "$dir/odbc.env"
}

stop() {
  [ -e "$dir" ] || return 0
  if [ ! -e "$dir/$marker" ]; then
    rmdir "$dir" 2>/dev/null && return 0
    echo "odbc-dsn.sh: $dir was not made by 'odbc-dsn.sh start'; leaving it alone" >&2
    return 1
  fi
  rm -rf -- "$dir"
}

case $action in
  start) start "${3:-}" ;;
  stop) stop ;;
  *) usage ;;
esac
