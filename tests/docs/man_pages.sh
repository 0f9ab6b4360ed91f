#!/bin/sh
# usage: man_pages.sh SCDOC FOLDER
# Builds each manual page of a folder, and lets man show it: neither may have anything to say.
set -u
scdoc=$1
built=$(mktemp -d)
trap 'rm -rf "$built"' EXIT
failed=0
count=0
for source in "$2"/*.scd; do
    name=${source##*/}
    page=$built/${name%.scd}
    "$scdoc" <"$source" >"$page" || { echo "$name: is not built"; failed=1; continue; }
    LC_ALL=C.UTF-8 MANWIDTH=100 man --warnings --local-file "$page" >"$built/text" 2>"$built/said" ||
        { echo "$name: man fails"; failed=1; }
    [ ! -s "$built/said" ] || { echo "$name:"; cat "$built/said"; failed=1; }
    [ -s "$built/text" ] || { echo "$name: is empty"; failed=1; }
    count=$((count + 1))
done
echo "$count pages"
[ "$count" -ge 1 ] && exit "$failed"
