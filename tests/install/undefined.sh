#!/bin/sh
# usage: undefined.sh INCLUDE_DIR COMPILER LIBRARY store|platform SYMBOL
# Every symbol that a library leaves to others comes from libc, cJSON or the named part of the headers;
# the given one is among them.
set -eu
# shellcheck source=tests/install/declared.sh
. "$(dirname "$0")/declared.sh"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

declared "$1" "$2" "$4" >"$folder/others"
# The three weak names are the compiler's own and mean nothing without their libraries.
nm -D --undefined-only "$3" | awk '{print $NF}' | LC_ALL=C sort -u |
    grep -vE '@GLIBC_|^cJSON_|^(_ITM_(de)?registerTMCloneTable|__gmon_start__)$' >"$folder/undefined"

grep -qx "$5" "$folder/undefined" || { echo "$5 is not undefined"; exit 1; }
foreign=$(LC_ALL=C comm -13 "$folder/others" "$folder/undefined")
[ -z "$foreign" ] || { printf 'undefined, and nobody brings it:\n%s\n' "$foreign"; exit 1; }
