#!/usr/bin/env bash
# Makes the Debian package, unpacks it and runs it from there; every library that its files name is in a package that it depends on.
# Leaves with 77 where there are no tools for packages.
#   deb_package.sh CPACK BUILD
set -euo pipefail
command -v dpkg-shlibdeps >/dev/null && command -v file >/dev/null || exit 77
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cpack=$1
cd "$2"
"$cpack" -G DEB -B "$folder/made" >"$folder/log" || { cat "$folder/log"; exit 1; }
package=$(echo "$folder"/made/*.deb)
dpkg-deb -x "$package" "$folder/root"
cd "$folder"

depends=$(dpkg-deb -f "$package" Depends | tr ',|' '\n\n' | sed 's/^ *//; s/ (.*//; s/ *$//')
count=0
for binary in root/usr/lib/stagehost/*; do
    while read -r library; do
        path=$(ldd "$binary" | awk -v name="$library" '$1 == name { print $3 }')
        [ -n "$path" ] || continue # the loader itself
        path=$(realpath "$path")
        owner=$({ dpkg -S "$path" || dpkg -S "${path#/usr}"; } 2>/dev/null | cut -d: -f1) # packages name /lib or /usr/lib
        grep -qx "$owner" <<<"$depends" || { echo "$binary needs $library of $owner, which is no dependency"; exit 1; }
        count=$((count + 1))
    done < <(objdump -p "$binary" | awk '$1 == "NEEDED" { print $2 }')
done
[ "$count" -gt 10 ]
! objdump -p root/usr/lib/stagehost/* | grep -E 'RPATH|RUNPATH' || { echo "a file looks for libraries where it was built"; exit 1; }
dpkg-deb -f "$package" Version | grep -qE '^[0-9]+\.[0-9]+\.[0-9]+\.[0-9]+$'

env -i PATH="$folder/root/usr/bin:/usr/bin:/bin" HOME="$folder" stagehost new tcp demo >/dev/null
env -i PATH="$folder/root/usr/bin:/usr/bin:/bin" HOME="$folder" stagehost check --strict demo/demo.js | grep -qx 'demo/demo.js: ok'
env -i PATH="$folder/root/usr/bin:/usr/bin:/bin" HOME="$folder" stagehost run root/usr/share/doc/stagehost/examples/driver/show.json |
    grep -q '^The show is over: all'
echo "the package runs, and depends on all that $count names of libraries ask for"
