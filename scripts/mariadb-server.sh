#!/usr/bin/env bash
# Starts and stops a throw-away MariaDB server for the tests and for trying talp
# against the "mySQL" source. Everything the server owns (data, socket, pid, log,
# the option file with the password) lives inside one folder, so several servers
# can run at once (two builds testing in parallel) and stopping one is a plain rm.
#
#   mariadb-server.sh start DIR   creates DIR, starts a server, writes DIR/server.env
#   mariadb-server.sh stop DIR    stops the server of DIR and removes DIR
#
# The server listens on 127.0.0.1 only, on a free port it picks, and on DIR/mysqld.sock.
# It holds the database TALP_DB_NAME (talp_examples) with the example table
# `catalogue`, and the user TALP_DB_USER (talp) with password TALP_DB_PASSWORD
# (talp-secret), who may do anything on every database. TALP_DB_PORT fixes the port.
#
# The password is only ever written to files of mode 600 inside DIR, never put on a
# command line, where every user of the machine could read it in the process list.
set -euo pipefail
umask 077

usage() {
  echo "usage: $0 start|stop DIR" >&2
  exit 2
}

[ $# -eq 2 ] || usage
action=$1
dir=$2
[ -n "$dir" ] || usage

here=$(cd "$(dirname "$0")" && pwd)
catalogue_sql=$here/../examples/catalogue.sql

db_user=${TALP_DB_USER:-talp}
db_password=${TALP_DB_PASSWORD:-talp-secret}
db_name=${TALP_DB_NAME:-talp_examples}

# stop removes DIR recursively, so it only does so for a folder that start made
# its own (or an empty one): a mistyped DIR must never cost anybody their files.
marker=talp-mariadb.dir

# ---------------------------------------------------------------- helpers

# The server of $dir is alive while a process carries our data folder on its
# command line; checking that (and not only the pid) survives recycled pids, and
# a zombie, whose command line is empty, counts as gone.
server_alive() {
  local pid=$1
  [ -n "$pid" ] && [ -r "/proc/$pid/cmdline" ] &&
    tr '\0' '\n' <"/proc/$pid/cmdline" 2>/dev/null | grep -qxF -- "--datadir=$dir/data"
}

# For the server start just launched: running, and not yet reaped. Its command
# line still reads "bash" for a moment after the fork, so server_alive cannot say.
process_running() {
  local stat
  read -r stat 2>/dev/null <"/proc/$1/stat" || return 1
  stat=${stat##*) }
  [ "${stat%% *}" != Z ]
}

server_pid() {
  local file pid
  for file in "$dir/server.pid" "$dir/mysqld.pid"; do
    [ -r "$file" ] || continue
    pid=$(tr -dc '0-9' <"$file")
    if server_alive "$pid"; then
      echo "$pid"
      return 0
    fi
  done
  return 1
}

# Sends SIGTERM (a clean shutdown takes well under a second), and SIGKILL if the
# server still runs after 20 s.
# Waits up to $2 tenths of a second for server $1 to be gone.
gone_within() {
  local tries
  for ((tries = 0; tries < $2; tries++)); do
    server_alive "$1" || return 0
    sleep 0.1
  done
  return 1
}

terminate() {
  local pid=$1
  kill -TERM "$pid" 2>/dev/null || true
  gone_within "$pid" 200 && return 0
  echo "mariadb-server.sh: server $pid ignored SIGTERM for 20 s, killing it" >&2
  kill -KILL "$pid" 2>/dev/null || true
  gone_within "$pid" 50 && return 0
  echo "mariadb-server.sh: server $pid survived SIGKILL" >&2
  return 1
}

# A value as a single-quoted shell word, unless it needs no quotes at all.
shell_word() {
  if [[ $1 =~ ^[A-Za-z0-9_./:@%+=-]+$ ]]; then
    printf '%s' "$1"
  else
    printf "'%s'" "${1//\'/\'\\\'\'}"
  fi
}

# A value as a double-quoted option file value (the option file reader strips
# the quotes and undoes \\ and \").
option_value() {
  local value=${1//\\/\\\\}
  printf '"%s"' "${value//\"/\\\"}"
}

# A value as an SQL string literal.
sql_string() {
  local value=${1//\\/\\\\}
  printf "'%s'" "${value//\'/\'\'}"
}

# A value as an SQL identifier.
sql_name() {
  # shellcheck disable=SC2016
  printf '`%s`' "${1//\`/\`\`}"
}

# Picks a port in 20000-31999: below the kernel's default range of outgoing
# ports, so a port seldom looks free and then turns out taken. Whatever slips
# through (another server starting at the same moment) makes the server fail to
# bind, and start tries again with another port.
pick_port() {
  local port tries
  for ((tries = 0; tries < 100; tries++)); do
    port=$((20000 + RANDOM % 12000))
    # shellcheck disable=SC2016
    if ! timeout 2 bash -c ': >"/dev/tcp/127.0.0.1/$1"' _ "$port" 2>/dev/null; then
      echo "$port"
      return 0
    fi
  done
  echo "mariadb-server.sh: found no free TCP port in 20000-31999" >&2
  return 1
}

# ---------------------------------------------------------------- stop

stop() {
  [ -e "$dir" ] || return 0
  dir=$(cd "$dir" && pwd -P)
  if [ ! -e "$dir/$marker" ]; then
    if rmdir "$dir" 2>/dev/null; then
      return 0
    fi
    echo "mariadb-server.sh: $dir was not made by 'mariadb-server.sh start'; leaving it alone" >&2
    return 1
  fi
  local pid
  if pid=$(server_pid); then
    terminate "$pid"
  fi
  rm -rf -- "$dir"
}

# ---------------------------------------------------------------- start

launched_pid=""
started=0

# A start that fails half-way must not leave a server running behind it; the
# folder stays, for its log, until stop removes it.
on_start_exit() {
  if [ "$started" -eq 0 ] && [ -n "$launched_pid" ]; then
    terminate "$launched_pid" || true
  fi
}

fail() {
  echo "mariadb-server.sh: $*" >&2
  if [ -s "$dir/mysqld.log" ]; then
    echo "--- last lines of $dir/mysqld.log:" >&2
    tail -n 25 "$dir/mysqld.log" >&2
  fi
  exit 1
}

# Starts mariadbd on $port; answers 0 once it accepts connections, 3 when the
# port was taken after all, 1 for any other failure.
launch() {
  local port=$1 tries
  local -a as_user=()
  [ "$(id -u)" -eq 0 ] && as_user=(--user=root)
  : >"$dir/mysqld.log"
  # setsid: a Ctrl-C meant for the tests must not reach the server; it is
  # stopped by stop, which waits for a clean shutdown.
  setsid mariadbd --no-defaults "${as_user[@]}" \
    --datadir="$dir/data" --tmpdir="$dir/tmp" \
    --socket="$dir/mysqld.sock" --pid-file="$dir/mysqld.pid" --log-error="$dir/mysqld.log" \
    --bind-address=127.0.0.1 --port="$port" --skip-name-resolve \
    "${server_options[@]}" \
    </dev/null >>"$dir/mysqld.log" 2>&1 &
  launched_pid=$!
  echo "$launched_pid" >"$dir/server.pid"

  for ((tries = 0; tries < 300; tries++)); do
    if ! process_running "$launched_pid"; then
      wait "$launched_pid" 2>/dev/null || true
      launched_pid=""
      grep -q 'Bind on TCP/IP port' "$dir/mysqld.log" && return 3
      return 1
    fi
    # ping counts a refused login as alive too; it only asks whether the server answers.
    if mariadb-admin --no-defaults --protocol=socket --socket="$dir/mysqld.sock" \
         --connect-timeout=2 --silent ping >/dev/null 2>&1; then
      return 0
    fi
    sleep 0.1
  done
  terminate "$launched_pid" || true
  launched_pid=""
  return 1
}

start() {
  command -v mariadbd >/dev/null || PATH=$PATH:/usr/sbin:/usr/local/sbin
  local program
  for program in mariadb-install-db mariadbd mariadb mariadb-admin; do
    command -v "$program" >/dev/null ||
      { echo "mariadb-server.sh: $program is missing; run scripts/install-deps.sh" >&2; exit 1; }
  done
  [ -r "$catalogue_sql" ] || { echo "mariadb-server.sh: $catalogue_sql is missing" >&2; exit 1; }

  mkdir -p -- "$dir"
  dir=$(cd "$dir" && pwd -P)
  # mariadb-install-db passes options on to the server without quoting them.
  [[ $dir =~ [[:space:]] ]] && { echo "mariadb-server.sh: DIR must not contain spaces: $dir" >&2; exit 1; }
  # A unix socket path holds at most 107 bytes.
  [ ${#dir} -le 90 ] || { echo "mariadb-server.sh: DIR is too long for a socket path: $dir" >&2; exit 1; }
  if [ -n "$(ls -A "$dir")" ]; then
    if server_pid >/dev/null; then
      echo "mariadb-server.sh: a server already runs in $dir; stop it first" >&2
    else
      echo "mariadb-server.sh: $dir is not empty; stop it (or remove it) first" >&2
    fi
    exit 1
  fi
  : >"$dir/$marker"
  chmod 700 "$dir"
  mkdir "$dir/data" "$dir/tmp"
  trap on_start_exit EXIT

  # Small buffers: a test server holds a few rows, and several may run at once
  # (about 90 MB of memory and 26 MB of disk each).
  server_options=(
    --innodb-log-file-size=8M --innodb-buffer-pool-size=32M
    --innodb-flush-log-at-trx-commit=2 --skip-innodb-doublewrite
    --character-set-server=utf8mb4 --collation-server=utf8mb4_general_ci
    --max-connections=500 --max-allowed-packet=64M --local-infile=0
  )

  # The user and the database are made during the install, from a file, so the
  # password never shows on a command line. The bootstrap server runs with
  # --skip-grant-tables, and account statements refuse to run (error 1290) until
  # FLUSH PRIVILEGES has loaded the grant tables.
  local user_sql db_sql password_sql host
  db_sql=$(sql_name "$db_name")
  password_sql=$(sql_string "$db_password")
  {
    echo "FLUSH PRIVILEGES;"
    echo "CREATE DATABASE IF NOT EXISTS $db_sql CHARACTER SET utf8mb4 COLLATE utf8mb4_general_ci;"
    for host in 127.0.0.1 localhost; do
      user_sql="$(sql_string "$db_user")@$(sql_string "$host")"
      echo "CREATE USER $user_sql IDENTIFIED BY $password_sql;"
      # Tests make users of their own, allowed their own database only.
      echo "GRANT ALL PRIVILEGES ON *.* TO $user_sql WITH GRANT OPTION;"
    done
  } >"$dir/init.sql"

  # root logs in through the socket only, and only as the operating system user
  # who started the server: no account without a password on the TCP port.
  local -a install_user=()
  [ "$(id -u)" -eq 0 ] && install_user=(--user=root)
  if ! mariadb-install-db --no-defaults "${install_user[@]}" \
       --datadir="$dir/data" --tmpdir="$dir/tmp" \
       --auth-root-authentication-method=socket --auth-root-socket-user="$(id -un)" \
       --skip-test-db --skip-name-resolve --extra-file="$dir/init.sql" \
       "${server_options[@]}" >"$dir/install.log" 2>&1; then
    rm -f "$dir/init.sql"
    cat "$dir/install.log" >&2
    fail "mariadb-install-db failed"
  fi
  rm -f "$dir/init.sql"

  local port status tries
  for ((tries = 0; tries < 10; tries++)); do
    if [ -n "${TALP_DB_PORT:-}" ]; then
      port=$TALP_DB_PORT
    else
      port=$(pick_port)
    fi
    status=0
    launch "$port" || status=$?
    [ "$status" -eq 0 ] && break
    if [ "$status" -ne 3 ] || [ -n "${TALP_DB_PORT:-}" ]; then
      fail "the server did not start (port $port)"
    fi
    echo "mariadb-server.sh: port $port was taken, trying another" >&2
  done
  [ "$status" -eq 0 ] || fail "the server found no free port in 10 tries"

  # The client reads the account from this file only (--defaults-file), so no
  # ~/.my.cnf or /etc/mysql setting can change what it connects to.
  {
    echo "[client]"
    echo "user=$(option_value "$db_user")"
    echo "password=$(option_value "$db_password")"
    echo "host=127.0.0.1"
    echo "port=$port"
    echo "socket=$dir/mysqld.sock"
    echo "default-character-set=utf8mb4"
  } >"$dir/client.cnf"

  # Over TCP, as the tests connect: a server that answers on its socket but not on
  # its port fails here and not in the middle of the tests.
  mariadb --defaults-file="$dir/client.cnf" --database="$db_name" \
    <"$catalogue_sql" || fail "loading $catalogue_sql failed"

  {
    echo "TALP_MYSQL_HOST=127.0.0.1"
    echo "TALP_MYSQL_PORT=$port"
    echo "TALP_MYSQL_SOCKET=$(shell_word "$dir/mysqld.sock")"
    echo "TALP_MYSQL_USER=$(shell_word "$db_user")"
    echo "TALP_MYSQL_PASSWORD=$(shell_word "$db_password")"
    echo "TALP_MYSQL_DATABASE=$(shell_word "$db_name")"
  } >"$dir/server.env"
  started=1

  # The password stays in the file: it never goes to a terminal or a log.
  grep -v '^TALP_MYSQL_PASSWORD=' "$dir/server.env"
  echo "TALP_MYSQL_PASSWORD=(in $dir/server.env)"
  echo "# MariaDB runs in $dir (client options: $dir/client.cnf). Try:"
  echo "#   set -a; . $dir/server.env; set +a; TALP_PASSWORD=\$TALP_MYSQL_PASSWORD build/talp tables --host \$TALP_MYSQL_HOST --port \$TALP_MYSQL_PORT --user \$TALP_MYSQL_USER --database \$TALP_MYSQL_DATABASE --type mySQL"
}

case $action in
  start) start ;;
  stop) stop ;;
  *) usage ;;
esac
