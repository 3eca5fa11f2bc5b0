# Shared by the packaging tests: arguments, a work folder, failures, and the
# list of files an install holds.
set -euo pipefail
export LC_ALL=C
build=$1
source=$2
version=$3
libdir=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

failures=0
fail() {
  echo "FAIL $*"
  failures=$((failures + 1))
}

# The files an install holds, relative to its prefix, sorted.
expected_files() {
  sed -e "s|LIBDIR|$libdir|" -e "s|VERSION|$version|" "$source/tests/packaging/installed_files.txt" | sort
}

# The files and links below folder $1, relative to it, in the form of expected_files.
files_below() {
  (cd "$1" && find . \( -type f -o -type l \) | sed -e 's|^\./||' -e 's|-targets-[a-z]*\.cmake$|-targets-CONFIG.cmake|' |
    sort)
}
