#!/bin/sh
# usage: undefined.sh INCLUDE_DIR COMPILER LIBRARY
# Every symbol that the store's library leaves to others comes from libc, cJSON or platform.h.
set -eu
# shellcheck source=tests/install/declared.sh
. "$(dirname "$0")/declared.sh"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

declared "$1" "$2" platform >"$folder/platform"
# The three weak names are the compiler's own and mean nothing without their libraries.
nm -D --undefined-only "$3" | awk '{print $NF}' | LC_ALL=C sort -u |
    grep -vE '@GLIBC_|^cJSON_|^(_ITM_(de)?registerTMCloneTable|__gmon_start__)$' >"$folder/undefined"

grep -qx wnk_traceout "$folder/undefined" || { echo 'wnk_traceout is not undefined'; exit 1; }
foreign=$(LC_ALL=C comm -13 "$folder/platform" "$folder/undefined")
[ -z "$foreign" ] || { printf 'undefined, and nobody brings it:\n%s\n' "$foreign"; exit 1; }
