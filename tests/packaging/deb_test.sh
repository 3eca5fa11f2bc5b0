#!/usr/bin/env bash
# The Debian package, built as `make package` builds it: named
# talpremote_VERSION_ARCH.deb, it holds the installed files under /usr and
# nothing else; it depends on exactly the packages that hold the libraries its
# binaries link; and dpkg installs it into a root of its own and purges it
# again, leaving nothing behind.
# Usage: deb_test.sh BUILD SOURCE VERSION LIBDIR
. "$(dirname "$0")/common.sh"

cpack --config "$build/CPackConfig.cmake" -B "$work" > "$work/cpack.log" 2>&1 || { cat "$work/cpack.log"; exit 1; }
deb=$work/talpremote_${version}_$(dpkg --print-architecture).deb
[[ -f $deb ]] || { fail "no $deb: $(ls "$work")"; exit 1; }

dpkg-deb -x "$deb" "$work/contents"
diff <(expected_files) <(files_below "$work/contents/usr") || fail "the package's files differ from installed_files.txt"

# The packages that hold the libraries the binaries name as needed.
linked=$(for binary in $(find "$work/contents" -type f -exec sh -c 'file -b "$1" | grep -q ^ELF' _ {} \; -print); do
           readelf -d "$binary" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'
         done | sort -u | while read -r library; do
           dpkg -S "*/$library" | sed -n 's/^\([^:]*\):.*/\1/p' | head -1
         done | sort -u | paste -sd' ' -)
depends=$(dpkg-deb -f "$deb" Depends | sed -e 's/ *([^)]*)//g' -e 's/,//g' | tr ' ' '\n' | sort -u | paste -sd' ' -)
[[ -n $depends && $depends == "$linked" ]] || fail "Depends: $depends; the binaries link libraries of: $linked"

root=$work/root
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates" && touch "$root/var/lib/dpkg/status"
# The root's own package database knows none of the dependencies checked above.
in_root=(dpkg --root="$root" --force-not-root --force-script-chrootless)
"${in_root[@]}" --force-depends --install "$deb" > "$work/dpkg.log" 2>&1 || { cat "$work/dpkg.log"; fail "dpkg --install"; }
diff <(expected_files) <(files_below "$root/usr") || fail "dpkg installed other files"
[[ $("$root/usr/bin/talp" --version) == "talp $version" ]] || fail "the installed talp: $("$root/usr/bin/talp" --version)"
"${in_root[@]}" --purge talpremote > "$work/dpkg.log" 2>&1 || { cat "$work/dpkg.log"; fail "dpkg --purge"; }
left=$(find "$root" -mindepth 1 -path "$root/var" -prune -o -print)
[[ -z $left ]] || fail "left behind: $left"
exit $((failures > 0))
