#!/usr/bin/env bash
# The installed tree as a program that embeds talpremote uses it. Installed
# into one prefix and then moved to another, it holds the listed files and no
# path of the build, the sources or the first prefix; examples/host, copied
# with it, builds against it with find_package (shared and static library)
# and with pkg-config, and each program prints the bundled catalogue. The
# library's private dependencies do not reach its users.
# Usage: install_test.sh BUILD SOURCE VERSION LIBDIR
. "$(dirname "$0")/common.sh"

cmake --install "$build" --prefix "$work/first" > /dev/null
mv "$work/first" "$work/moved"
prefix=$work/moved
diff <(expected_files) <(files_below "$prefix") || fail "the installed files differ from installed_files.txt"
if grep -rIl -e "$source" -e "$build" -e "$work/first" "$prefix"; then fail "installed files name the paths above"; fi
for binary in bin/talp "$libdir/libtalpremote.so.$version" "$libdir/talpremote/talpremote_plugin.so"; do
  if readelf -d "$prefix/$binary" | grep -E 'R(UN)?PATH'; then fail "$binary has a run path"; fi
done

hosts=$prefix/share/doc/talpremote/examples/host
catalogue=$prefix/share/doc/talpremote/examples/catalogue-tab.txt
strict=(-Wall -Wextra -Werror)
build_hosts() {  # build_hosts FOLDER CMAKE_OPTION...
  local folder=$1
  shift
  cmake -S "$hosts" -B "$work/$folder" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_FLAGS="${strict[*]}" "$@" \
    > "$work/$folder.log" && cmake --build "$work/$folder" >> "$work/$folder.log" ||
    { cat "$work/$folder.log"; fail "examples/host does not build in $folder"; }
}
build_hosts shared
build_hosts static -DTALP_LINK_STATIC=ON

export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
read -ra pc_flags <<< "$(pkg-config --cflags --libs talpremote)"
pc_flags+=(-Wl,-rpath,"$(pkg-config --variable=libdir talpremote)")
module=$(pkg-config --variable=pluginmodule talpremote)
mkdir "$work/pkg-config"
g++ -std=c++20 "${strict[@]}" "$hosts/library_host.cpp" -o "$work/pkg-config/library_host" "${pc_flags[@]}" ||
  fail "library_host does not build with pkg-config"
g++ -std=c++20 "${strict[@]}" -DTALP_PLUGIN_MODULE="\"$module\"" "$hosts/plugin_host.cpp" \
  -o "$work/pkg-config/plugin_host" "${pc_flags[@]}" -ldl || fail "plugin_host does not build with pkg-config"

expected="columns: sku | name | category | brand | price | stock | description
1001 | Claw hammer 450 g | tools | Stahlwerk | 12.50 | 40 | Forged steel head, fibreglass handle
1002 | Cordless drill 18 V | tools | Voltix | 89.00 | 12 | Two batteries, charger and case
1003 | Wood screws 4×40 (200) | fasteners | Spax | 6.90 | 310 | Countersunk, Torx T20"
for program in shared/library_host shared/plugin_host static/library_host static/plugin_host \
               pkg-config/library_host pkg-config/plugin_host; do
  output=$("$work/$program" "$catalogue" 2>&1) || fail "$program exits with $?"
  [[ $output == "$expected" ]] || fail "$program prints: $output"
done

# Private dependencies stay private: users of the shared library neither
# link them nor see their headers.
for program in shared/library_host pkg-config/library_host; do
  [[ $(readelf -d "$work/$program") != *mariadb* ]] || fail "$program links the MariaDB client itself"
done
[[ ${pc_flags[*]} != *mariadb* ]] || fail "pkg-config gives MariaDB's flags: ${pc_flags[*]}"
exit $((failures > 0))
