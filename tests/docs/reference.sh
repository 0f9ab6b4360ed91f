#!/bin/sh
# usage: reference.sh DOXYGEN SOURCES INCLUDE_DIR COMPILER
# Makes the reference of the headers in a folder: without a warning, and with all that they declare.
set -eu
# shellcheck source=tests/install/declared.sh
. "$2/tests/install/declared.sh"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cd "$2"
{
    cat docs/Doxyfile
    echo "INPUT = $3/camparam"
    echo "OUTPUT_DIRECTORY = $folder"
} >"$folder/Doxyfile"
"$1" "$folder/Doxyfile" >"$folder/said" 2>&1 || { cat "$folder/said"; echo 'doxygen fails'; exit 1; }
[ ! -s "$folder/said" ] || { cat "$folder/said"; exit 1; }

for part in store platform commands; do
    declared "$3" "$4" "$part"
done | LC_ALL=C sort -u >"$folder/declared"
[ "$(wc -l <"$folder/declared")" -gt 500 ] || { echo 'the headers declare too little'; exit 1; }
grep -ohE '\b[A-Za-z_][A-Za-z_0-9]+\b' "$folder"/html/*_8h.html | LC_ALL=C sort -u >"$folder/shown"
LC_ALL=C comm -23 "$folder/declared" "$folder/shown" >"$folder/missing"
[ ! -s "$folder/missing" ] || { echo 'not in the reference:'; cat "$folder/missing"; exit 1; }
