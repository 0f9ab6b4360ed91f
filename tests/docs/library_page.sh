#!/bin/sh
# usage: library_page.sh INCLUDE_DIR COMPILER PAGE DECLARED
# Each function that libcamparam(3) names is declared, it names all that the headers of the life cycle
# and the guard declare and each field of the profile, and its example compiles.
set -eu
# shellcheck source=tests/docs/page.sh
. "$(dirname "$0")/page.sh"
# shellcheck source=tests/install/declared.sh
. "$4"
include=$1
compiler=$2
page=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

for part in store platform commands; do
    declared "$include" "$compiler" "$part"
done | LC_ALL=C sort -u >"$folder/declared"
# In the text a function is bold; the rest of a call may stand in its parentheses.
grep -oE '\*[A-Za-z_0-9]+\*\(' "$page" | tr -d '*(' | grep -vxE 'lib.*|camparam.*|find_package' |
    LC_ALL=C sort -u >"$folder/functions"
[ -s "$folder/functions" ] || { echo 'the page names no function'; exit 1; }
LC_ALL=C comm -23 "$folder/functions" "$folder/declared" >"$folder/unknown"
[ ! -s "$folder/unknown" ] || { echo 'named and not declared:'; cat "$folder/unknown"; exit 1; }

for header in control guard commands; do
    sed 's|/\*.*\*/||' "$include/camparam/$header.h" | sed '/\/\*/,/\*\//d' | tr '\n' ' ' |
        grep -oE 'PARA_API [^;(]*\(' | sed -E 's/\($//; s/.*[ *]//'
done | LC_ALL=C sort -u | LC_ALL=C comm -12 - "$folder/declared" >"$folder/cycle"
[ "$(wc -l <"$folder/cycle")" -ge 15 ] || { echo 'the headers declare too little'; exit 1; }
LC_ALL=C comm -23 "$folder/cycle" "$folder/functions" >"$folder/missing"
[ ! -s "$folder/missing" ] || { echo 'declared and not named:'; cat "$folder/missing"; exit 1; }

# Fields: "type name;" and "result (*name)(...".
sed -n '/^typedef struct para_profile_t/,/^}/p' "$include/camparam/control.h" |
    sed -nE 's/^ +(void|int) \(\*([a-z_0-9]+)\)\(.*/\2/p; s/^ *(const char \*|int |para_entry_point )([a-z_0-9]+);.*/\2/p' |
    LC_ALL=C sort >"$folder/fields"
[ "$(wc -l <"$folder/fields")" -eq 18 ] || { echo 'the profile has other fields'; cat "$folder/fields"; exit 1; }
while read -r field; do
    grep -qF "*$field*" "$page" || { echo "not named: $field"; exit 1; }
done <"$folder/fields"

awk '/^# EXAMPLE/ { section = 1 } section && /^```/ { inside = !inside; next } section && inside' "$page" >"$folder/host.c"
[ -s "$folder/host.c" ] || { echo 'no example'; exit 1; }
"$compiler" -std=c99 -Wall -Wextra -Wpedantic -Werror -I "$include" -fsyntax-only "$folder/host.c"
