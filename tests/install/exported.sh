#!/bin/sh
# usage: exported.sh INCLUDE_DIR COMPILER LIBRARY store|commands
# Compares the symbols that a library exports with those that its headers declare.
set -eu
# shellcheck source=tests/install/declared.sh
. "$(dirname "$0")/declared.sh"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

declared "$1" "$2" "$4" >"$folder/declared"
nm -D --defined-only "$3" | awk '{print $3}' | LC_ALL=C sort -u >"$folder/exported"

[ -s "$folder/declared" ] || { echo 'no declarations found'; exit 1; }
echo "$(wc -l <"$folder/declared") declared; < declared only, > exported only:"
diff "$folder/declared" "$folder/exported"
