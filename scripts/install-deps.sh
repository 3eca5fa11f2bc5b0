#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, when missing.
# Extra package names given as arguments are installed too.
set -euo pipefail

packages=(g++ cmake ninja-build pkg-config make libgtest-dev libgmock-dev libbenchmark-dev
          mariadb-server mariadb-client libmariadb-dev
          unixodbc-dev unixodbc libsqliteodbc odbc-mariadb sqlite3 duktape-dev
          nlohmann-json3-dev dpkg-dev file man-db groff-base "$@")

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
